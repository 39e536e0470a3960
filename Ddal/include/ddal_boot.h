/* SPDX-License-Identifier: MIT */
/// @file ddal_boot.h
/// The boot loader: where it was started from, its version, and flashing a new one.
#ifndef DDAL_BOOT_H
#define DDAL_BOOT_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Where the boot loader that started this board came from. A driver may know more places.
typedef enum ddal_boot_location {
    DDAL_BOOT_PRIMARY = 0, ///< the primary copy in flash
    DDAL_BOOT_BACKUP = 1,  ///< the backup copy in flash: the primary one could not be started
    DDAL_BOOT_UIMAGE = 2   ///< RAM: it was loaded by the boot loader in flash, as an image
} ddal_boot_location;

/// Bytes that ddal_boot_get_uboot_version() writes at most, terminating zero included.
#define DDAL_BOOT_VERSION_SIZE 64

/// Reads where the boot loader was started from.
/// @param location receives a value of #ddal_boot_location, or another one
int32_t ddal_boot_get_uboot_id(int32_t* location);

/// Reads the version of the boot loader in flash: a text that begins with a decimal number.
/// @param version receives the text, terminated; a buffer of #DDAL_BOOT_VERSION_SIZE bytes
int32_t ddal_boot_get_uboot_version(char* version);

/// Writes a boot loader into flash. It is started at the next reset; what ddal_boot_get_uboot_id() says does not change
/// before. Returns when the flash has been written, which takes seconds on a real board.
/// @param path the image, without trailer, as the flash takes it
/// @return #DDAL_OK; #DDAL_ERROR_BAD_FILE when the file cannot be read or is empty; #DDAL_ERROR_NO_RESOURCE when it is
///   larger than the flash; #DDAL_ERROR_BUSY while somebody else writes there. After a failure the old boot loader is
///   still there unless the driver says otherwise.
int32_t ddal_boot_update_uboot(const char* path);

#ifdef __cplusplus
}
#endif

#endif
