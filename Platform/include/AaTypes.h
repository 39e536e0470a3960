/* SPDX-License-Identifier: MIT */
/// @file AaTypes.h
/// Types that every platform header shares.
///
/// The platform seam consists of the `Aa*` headers in this folder. They declare; they do not define. A board integrator
/// maps each function onto the board's middleware; on an ordinary Linux host the library `dorn::host` defines them all.
///
/// Rules that hold for the whole seam, unless a function says otherwise:
/// - Every function may be called from any thread, and from several at once.
/// - Times are micro-seconds; #AA_WAIT_FOREVER (-1) waits without limit and #AA_NO_WAIT (0) does not wait.
/// - A result of type `int32_t` named a status is 0 on success; other values are the function's own and are listed
/// there.
/// - Names and paths are NUL-terminated and are copied before the call returns.
/// - Nothing throws. A thread that is cancelled inside a waiting function unwinds, so that destructors run.
#ifndef AA_TYPES_H
#define AA_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// 1 for true, 0 for false.
typedef uint32_t TBoolean;

/// Result of a platform operation that can only work or fail.
typedef enum EStatus {
    EStatus_NoError = 0,       ///< it has worked
    EStatus_UndefinedError = 1 ///< it has failed
} EStatus;

/// Time-out value: wait without limit.
#define AA_WAIT_FOREVER (-1)
/// Time-out value: do not wait.
#define AA_NO_WAIT 0

#if defined(__GNUC__)
/// Lets the compiler compare a `printf` format with its arguments.
#define AA_PRINTF_FORMAT(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
/// Nothing, where the compiler cannot compare.
#define AA_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

#ifdef __cplusplus
}
#endif

#endif
