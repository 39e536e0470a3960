/* SPDX-License-Identifier: MIT */
/// @file AaCpu.h
/// Byte order.
#ifndef AA_CPU_H
#define AA_CPU_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Converts a little-endian word to the processor's byte order, in place: nothing happens on a little-endian processor.
/// Null is passed over.
void AaCpuBitSwapByteOrder32(uint32_t* word);

#ifdef __cplusplus
}
#endif

#endif
