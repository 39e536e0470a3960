/* SPDX-License-Identifier: MIT */
/// @file AaError.h
/// Errors in the program itself.
#ifndef AA_ERROR_H
#define AA_ERROR_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reports a broken assertion (text, file, line) to the log and ends the process.
void AaErrorAssertionFailed(const char* condition, const char* file, uint32_t line);

/// Ends the process with a log line unless @p condition holds. For errors in the program, never for outside data.
#define AaErrorAssertion(condition)                                                                                    \
    ((condition) ? (void)0 : AaErrorAssertionFailed(#condition, __FILE__, (uint32_t)__LINE__))

#ifdef __cplusplus
}
#endif

#endif
