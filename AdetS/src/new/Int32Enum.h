/* SPDX-License-Identifier: MIT */
/// @file Int32Enum.h
/// Enumerations of signed 32-bit values in headers that C and C++ share.
///
///     enum ADETS_INT32_ENUM(EUnitType) { EUnitType_Unallocated = 0 };
///     ADETS_INT32_TYPE(EUnitType);
///
/// In C++ that is an enumeration that says of what its values are. C cannot say so, and makes one without negative
/// values unsigned: there the enumerators are constants of an enumeration without name, and the type is `int32_t`.
#ifndef NEW_INT32_ENUM_H
#define NEW_INT32_ENUM_H

#include <stdint.h>

#ifdef __cplusplus
/// What the enumerations have as their underlying type.
#define ADETS_INT32_BASE : int32_t
/// Begins an enumeration; braces with its enumerators follow.
#define ADETS_INT32_ENUM(name) name ADETS_INT32_BASE
/// Makes the enumeration's name a type in C, too; follows the closing brace.
#define ADETS_INT32_TYPE(name) typedef enum name name
#else
#define ADETS_INT32_ENUM(name)
#define ADETS_INT32_TYPE(name) typedef int32_t name
#endif

#endif
