/* SPDX-License-Identifier: MIT */
/// @file AaTrbl.h
/// Files that are collected when troubleshooting data is gathered.
#ifndef AA_TRBL_H
#define AA_TRBL_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// One step of collecting a file, run in the process that registered it, on a thread of the platform. @param fileName
/// the registered path.
/// @param opaque the registered context. @return 0; another value when the step failed (logged by the callback).
typedef int32_t (*TAaTrblFileCallback)(const char* fileName, void* opaque);

/// Registers a file for collection, in place of one of the same name and path that has been registered before.
/// @param name short name of the file in the collection
/// @param path the target's path
/// @param priority of a process's files those of a lower number are collected first; processes do it at once
/// @param flags 0
/// @param prepare called first; may be null
/// @param store called to produce the file at @p path; may be null when the file exists by itself
/// @param remove called when the file has been collected, if it has been stored; may be null
/// @param opaque given to each callback; must stay valid for the life of the process
/// @return 0; another value when the file could not be registered.
int32_t AaTrblFileRegister(const char* name, const char* path, uint32_t priority, uint32_t flags,
                           TAaTrblFileCallback prepare, TAaTrblFileCallback store, TAaTrblFileCallback remove,
                           void* opaque);

#ifdef __cplusplus
}
#endif

#endif
