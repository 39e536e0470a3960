/* SPDX-License-Identifier: MIT */
/// @file Int32Enum.h
/// Enumerations of signed 32-bit values in headers that C and C++ share.
#ifndef NEW_INT32_ENUM_H
#define NEW_INT32_ENUM_H

#include <stdint.h>

/// Stands behind the name of an enumeration. C cannot say of how many bits its values are, and makes them of 32 bits.
#ifdef __cplusplus
#define ADETS_INT32 : int32_t
#else
#define ADETS_INT32
#endif

#endif
