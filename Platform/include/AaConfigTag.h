/* SPDX-License-Identifier: MIT */
/// @file AaConfigTag.h
/// Configuration tags: named values of up to 65,535 bytes, shared by all processes of a node, and their observers.
///
/// Numbers are kept in host byte order with their own size (U16: 2 bytes, U32: 4); strings without a terminator.
/// Names have 1 to 255 characters. Tags whose name begins with "tessel.service." describe the EE itself: each process
/// has its own.
#ifndef AA_CONFIG_TAG_H
#define AA_CONFIG_TAG_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Results of the tag functions.
typedef enum EAaConfigTagStatus {
    EAaConfigTagStatus_Ok = 0,          ///< done
    EAaConfigTagStatus_NotFound = 1,    ///< no such tag, or no such observer
    EAaConfigTagStatus_BadArgument = 2, ///< null, an empty or too long name, a value that is too long
    EAaConfigTagStatus_WrongSize = 3,   ///< the tag's value does not have the size that was asked for
    EAaConfigTagStatus_StoreFailed = 4  ///< the store cannot be opened, read or written (logged)
} EAaConfigTagStatus;

/// Makes the tags usable; the first platform function of a process. @return 0; another value when the node's store
/// cannot be opened (the reason has been printed to standard error).
int32_t AaConfigEarlyStartup(void);

/// Sets a tag to a text. @return an #EAaConfigTagStatus.
int32_t AaConfigTagSetString(const char* name, const char* value);
/// Sets a tag to a 16-bit number. @return an #EAaConfigTagStatus.
int32_t AaConfigTagSetU16(const char* name, uint16_t value);
/// Sets a tag to a 32-bit number. @return an #EAaConfigTagStatus.
int32_t AaConfigTagSetU32(const char* name, uint32_t value);
/// Sets a tag to @p length bytes. @return an #EAaConfigTagStatus.
int32_t AaConfigTagSet(const char* name, const void* value, uint32_t length);

/// Reads a tag.
/// @param value receives a buffer with the value and one zero byte behind it, to be released with AaMemUnRef(); null
/// unless
///   the result is 0.
/// @param length receives the value's length in bytes; may be null.
/// @return an #EAaConfigTagStatus.
int32_t AaConfigTagGet(const char* name, void** value, uint32_t* length);

/// Reads a tag; when it does not exist, gives a copy of the default instead, and 0 as the result.
/// Parameters as for AaConfigTagGet(); @p defaultValue has @p defaultLength bytes.
int32_t AaConfigTagGetDefault(const char* name, void** value, uint32_t* length, const void* defaultValue,
                              uint32_t defaultLength);

/// Reads a tag of exactly 4 bytes. @p value is left as it is unless the result is 0. @return an #EAaConfigTagStatus.
int32_t AaConfigTagGetU32(const char* name, uint32_t* value);

/// Called with a tag's name, its new value and the value's length in bytes, on a platform thread; one call at a time in
/// a process. Name and value are valid during the call only; the value is aligned for any type, and one that is shorter
/// than 4 bytes is followed by zero bytes up to there.
typedef void (*TAaConfigTagObserver)(const char* name, const void* value, uint32_t length);

/// Has @p observer called for every set of the tag from now on, in the order of the sets, none left out, whichever
/// process makes them. The present value is not reported. The same observer is registered once per name.
/// @return an #EAaConfigTagStatus.
int32_t AaConfigTagRegister(const char* name, TAaConfigTagObserver observer);

/// Ends what AaConfigTagRegister() began. When it returns, the observer is not running for this tag and will not be
/// called again; called from the observer itself, it returns at once. @return an #EAaConfigTagStatus.
int32_t AaConfigTagUnregister(const char* name, TAaConfigTagObserver observer);

/// Sets tags from a configuration file. A bad entry is logged with file and line and passed over; a file that is not
/// well-formed is used up to the fault.
/// @param path the target's path; opened below the board root.
/// @return 0; 1 when the file cannot be opened; 2 when something in it was passed over.
int32_t AaConfigTagReadFile(const char* path);

#ifdef __cplusplus
}
#endif

#endif
