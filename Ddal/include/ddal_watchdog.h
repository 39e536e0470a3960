/* SPDX-License-Identifier: MIT */
/// @file ddal_watchdog.h
/// The watchdog, as far as it is used to reset the unit.
#ifndef DDAL_WATCHDOG_H
#define DDAL_WATCHDOG_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Resets the unit by its watchdog: every process ends where it stands, nothing is unwound or stored.
/// @return only when the unit could not be reset: not #DDAL_OK.
int32_t ddal_watchdog_reboot(void);

#ifdef __cplusplus
}
#endif

#endif
