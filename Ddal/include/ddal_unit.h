/* SPDX-License-Identifier: MIT */
/// @file ddal_unit.h
/// Which variant of its unit the board is.
#ifndef DDAL_UNIT_H
#define DDAL_UNIT_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Returns the board code, which tells the variants of one unit apart (single board, master or slave of a redundant
/// pair, ...). Codes count from 1; 0 when the board has none or it cannot be read: this function has no other way to
/// fail.
uint32_t ddal_unit_get_board(void);

#ifdef __cplusplus
}
#endif

#endif
