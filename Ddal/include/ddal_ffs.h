/* SPDX-License-Identifier: MIT */
/// @file ddal_ffs.h
/// The board's flash file systems.
#ifndef DDAL_FFS_H
#define DDAL_FFS_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// How a file system is mounted. A driver may know more modes.
typedef enum ddal_ffs_mode {
    DDAL_FFS_NOT_MOUNTED = 0, ///< not mounted
    DDAL_FFS_READ_ONLY = 1,   ///< mounted for reading
    DDAL_FFS_READ_WRITE = 2   ///< mounted for reading and writing
} ddal_ffs_mode;

/// Reads how a file system is mounted now.
/// @param fileSystem the driver's number of the file system
/// @param mode receives a value of #ddal_ffs_mode, or another one
/// @return #DDAL_OK, also when it is not mounted; #DDAL_ERROR_NOT_FOUND when the board has no such file system.
int32_t ddal_ffs_is_mounted(uint32_t fileSystem, uint32_t* mode);

#ifdef __cplusplus
}
#endif

#endif
