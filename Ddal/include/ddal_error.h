/* SPDX-License-Identifier: MIT */
/// @file ddal_error.h
/// Results of the driver seam and their texts.
///
/// The driver seam consists of the `ddal_*` headers in this folder. They declare; they do not define. A board
/// integrator maps each function onto the board's drivers; on an ordinary Linux host the library `dorn::board` defines
/// them all over a board that a device tree describes.
///
/// Rules that hold for the whole seam, unless a function says otherwise:
/// - A function returns #DDAL_OK or one of the codes of #ddal_result; a driver may return codes of its own. Callers
///   compare with #DDAL_OK and print the rest, so that any other value is a failure and none needs a meaning here.
/// - Every function may be called from any thread, from several at once, and from several processes of the board at
///   once. None calls back.
/// - What a function returns through pointers is set when it returns #DDAL_OK and untouched otherwise. All pointers are
///   the caller's, none is kept after the call, and null is #DDAL_ERROR_INVALID_ARGUMENT.
/// - A length that is called `maxLength` counts characters without the terminating zero: the buffer has `maxLength` + 1
///   bytes. A length that is called `bufferSize` counts the bytes of the buffer, terminating zero included. Texts are
///   always terminated; a text that is longer than the buffer is cut, and that is no failure. A `bufferSize` of 0, and
///   any length above `INT32_MAX` (somebody's 0 minus 1), are #DDAL_ERROR_INVALID_ARGUMENT.
/// - Paths are absolute paths of the target.
/// - Nothing throws and nothing changes `errno` for the caller to look at.
#ifndef DDAL_ERROR_H
#define DDAL_ERROR_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// What the functions of the seam return, as `int32_t`. The values are stable: they stand in log lines.
typedef enum ddal_result {
    DDAL_OK = 0,                     ///< done
    DDAL_ERROR_FAILED = 1,           ///< failed for a reason that none of the others names
    DDAL_ERROR_INVALID_ARGUMENT = 2, ///< a null pointer, a length that cannot be, an unknown mode or slot
    DDAL_ERROR_NO_DESCRIPTION = 3,   ///< the board's description is missing or cannot be read
    DDAL_ERROR_BAD_DESCRIPTION = 4,  ///< the board's description has this property, and not in its form
    DDAL_ERROR_NOT_FOUND = 5,        ///< the board has no such unit, module, device, FPGA or file system
    DDAL_ERROR_BAD_HANDLE = 6,       ///< the handle is not open, or not in the direction asked for
    DDAL_ERROR_BAD_ADDRESS = 7,      ///< the range is not within the device's memory
    DDAL_ERROR_BAD_FILE = 8,         ///< the file cannot be read, or is not what the device takes
    DDAL_ERROR_IO = 9,               ///< the device could not be read or written
    DDAL_ERROR_NO_RESOURCE = 10,     ///< no memory, no free handle, no room on the device
    DDAL_ERROR_BUSY = 11,            ///< the device is at something else
    DDAL_ERROR_TIMEOUT = 12,         ///< the device did not answer in time
    DDAL_ERROR_NOT_SUPPORTED = 13    ///< the board has the device, and it cannot do this
} ddal_result;

/// Writes the text that describes a result, in a few English words without a full stop.
/// @param code a result; one that is none of the driver's gets a text with its number
/// @param buffer receives the text, terminated
/// @param maxLength greatest number of characters without the terminating zero: @p buffer has one byte more
/// @return #DDAL_OK; #DDAL_ERROR_INVALID_ARGUMENT when @p buffer is null or @p maxLength cannot be. When it fails
///   otherwise, @p buffer holds the empty text: a caller who prints it without looking at the result prints no rubbish.
int32_t ddal_strerror(int32_t code, char* buffer, uint32_t maxLength);

#ifdef __cplusplus
}
#endif

#endif
