/* SPDX-License-Identifier: MIT */
/// @file firmware.h
/// Keeping a board's firmware current: boot loader (u-boot), board-management unit (BMU) and FPGA.
///
/// Images (binary.h) lie in `/ffs/run/boot`. For each of the three:
///
/// 1. is_uboot_update_needed(), is_bmu_update_needed() or is_fpga_update_needed() finds the one image that fits the
///    board and compares its version with the one in use. 1: it is to be flashed; 0: it is not; negative: there is no
///    telling.
/// 2. An operator may have switched updates off (is_firmware_update_disabled()) or force them
///    (is_firmware_update_forced(), which counts: ask it only when the update follows).
/// 3. update_uboot(), update_bmu() or update_fpga() checks the image and flashes its payload.
///
/// The boot loader is updated when the image is as new or newer, and only when it was started from RAM or is forced to;
/// the BMU only when the image is newer; an FPGA whenever it is another one, older ones included.
///
/// An image's file name says what it is for: the first three characters of the unit id, a dash and the chip identifier
/// stand somewhere in it ("NAX-FENWICK"), or, where no file has that, the chip identifier alone; it ends in ".bin".
/// Which identifiers there are is the business of firmware/FirmwareCatalogue.hpp.
///
/// All paths are the target's. What is found and done goes to `syslog`, behind the name of the function. Functions that
/// give a file name write at most size - 1 characters and a NUL, and nothing where the size is 0. Nothing throws. Not
/// for several threads at once: the unit's identity is kept without a lock, and the payload to be flashed is a file of
/// a fixed name.
#ifndef FIRMWARE_H
#define FIRMWARE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Bytes of a file name that find_binary_multiple() gives, NUL included; a longer one is cut.
#define FIRMWARE_FILE_NAME_SIZE 128

/// Results beside 0, 1 and counts. Each function lists its own.
enum EFirmwareResult {
    FIRMWARE_UNIT_ID_NOT_READ = -1,        ///< finding an image: the unit id could not be read
    FIRMWARE_SEARCH_NOT_FORMED = -2,       ///< ... the search string could not be formed
    FIRMWARE_SEARCH_TOO_LONG = -3,         ///< ... the search string has more than 127 characters
    FIRMWARE_DIRECTORY_NOT_OPENED = -4,    ///< ... the directory could not be opened
    FIRMWARE_TOO_MANY_FILES = -5,          ///< ... more than 10 files have the chip identifier
    FIRMWARE_HWSWID_NOT_READ = -6,         ///< ... the board's own HwSwId could not be read
    FIRMWARE_NO_IMAGE = -7,                ///< deciding: no image fits
    FIRMWARE_SEVERAL_IMAGES = -8,          ///< ... several images fit
    FIRMWARE_ACTIVE_VERSION_NOT_READ = -9, ///< ... the version in use could not be read
    FIRMWARE_NOT_SUPPORTED = -10,    ///< no such firmware on this unit or board; boot loader: its start is not known
    FIRMWARE_ARGUMENT_MISSING = -911 ///< a null pointer
};

/// How update_uboot(), update_bmu() and update_fpga() fail.
enum EFirmwareUpdateResult {
    FIRMWARE_UPDATE_CRC = -1,      ///< the image is not whole
    FIRMWARE_UPDATE_COPY = -2,     ///< its payload could not be copied
    FIRMWARE_UPDATE_PRIMARY = -3,  ///< flashing failed; an FPGA's primary slot
    FIRMWARE_UPDATE_SECONDARY = -4 ///< flashing an FPGA's secondary slot failed; the primary one is new
};

/// Reads who the unit is. The others do so by themselves at their first use. @return 0; -1 when it cannot be read.
int32_t unit_init(void);

/// The unit id, at most 31 characters: "NAXE". Empty when it cannot be read; the next call then tries again.
const char* unit_version(void);

/// The first three characters of the unit id: "NAX".
const char* unit_type(void);

/// Whether an operator has switched updates off: `/ffs/run/logs/disable-firmware-update` is there, or that with a dash
/// and the unit type in small letters behind it. @return 1 or 0.
int32_t is_firmware_update_disabled(void);

/// Whether an operator forces an update of a part: `/ffs/run/logs/force-firmware-update-<unit type>-<part>`, the type
/// in small letters, holds a number above 0. The number then is one less.
/// @return 1; 0 also when the lower number could not be written.
int32_t is_firmware_update_forced(const char* part);

/// Finds the files of a directory whose names fit.
/// @param board board text, of which three characters count; null: the unit id
/// @param chip chip identifier
/// @param file receives the names, in the order of the directory
/// @param items how many names @p file has room for
/// @return how many files fit, which may be more than @p items; #FIRMWARE_ARGUMENT_MISSING,
///   #FIRMWARE_UNIT_ID_NOT_READ to #FIRMWARE_DIRECTORY_NOT_OPENED.
int32_t find_binary_multiple(const char* path, const char* board, const char* chip,
                             char (*file)[FIRMWARE_FILE_NAME_SIZE], int32_t items);

/// Finds the image of a directory that fits the board.
/// @param path, board, chip as for find_binary_multiple()
/// @param hwswid the board's HwSwId; 0: it is read from the device tree
/// @param minor whether it may differ in the minor version, see scan_hwswid()
/// @param file receives the name, empty unless exactly one fits
/// @param version receives its version, 0 unless exactly one fits, also when another argument is missing
/// @return how many images fit; the results of find_binary_multiple(), #FIRMWARE_TOO_MANY_FILES,
///   #FIRMWARE_HWSWID_NOT_READ. @p path, @p chip, @p file and @p version are required.
int32_t find_binary_compatible(const char* path, const char* board, const char* chip, uint32_t hwswid, int32_t minor,
                               char* file, uint32_t size, uint32_t* version);

/// Whether the boot loader was started from RAM. @return 1, 0; -1 when that cannot be read.
int32_t is_uboot_booted_from_ram(void);

/// @param filename receives the image; empty when the result is negative. Nothing is looked for when the boot loader
/// was
///   started from flash and is not forced: the result is 0 and @p filename stays as it is.
/// @param force 1: also when it was not started from RAM
/// @return 1, 0; the results of find_binary_compatible(), #FIRMWARE_NO_IMAGE to #FIRMWARE_NOT_SUPPORTED.
int32_t is_uboot_update_needed(char* filename, uint32_t size, int32_t force);

/// @param filename receives the image; empty when the result is negative
/// @return 1, 0; the results of find_binary_compatible(), #FIRMWARE_NO_IMAGE to #FIRMWARE_ACTIVE_VERSION_NOT_READ.
int32_t is_bmu_update_needed(char* filename, uint32_t size);

/// As is_bmu_update_needed(), for boards without microcontroller (MCU), which the caller names: the images are those of
/// board text "KIV" with chip identifier "BMU", whatever the unit is.
/// @param board the driver's board code (ddal_unit_get_board()): 2, 3 or 4; others are #FIRMWARE_NOT_SUPPORTED
/// @param hwswid the board's HwSwId
int32_t is_bmu_update_needed_no_mcu(char* filename, uint32_t size, uint32_t board, uint32_t hwswid);

/// @param filename receives the image; empty when the result is negative
/// @return 1, 0; the results of find_binary_compatible(), #FIRMWARE_NO_IMAGE to #FIRMWARE_NOT_SUPPORTED.
int32_t is_fpga_update_needed(char* filename, uint32_t size);

/// Flashes the boot loader. @return 0; #FIRMWARE_UPDATE_CRC to #FIRMWARE_UPDATE_PRIMARY.
int32_t update_uboot(const char* name);

/// Flashes the BMU. @param id the driver's number of it; 0: the unit's own
/// @return 0; #FIRMWARE_UPDATE_CRC to #FIRMWARE_UPDATE_PRIMARY.
int32_t update_bmu(const char* name, uint32_t id);

/// Flashes both slots of the unit's FPGA, the secondary one only when the primary one is done.
/// @return 0; #FIRMWARE_UPDATE_CRC to #FIRMWARE_UPDATE_SECONDARY, #FIRMWARE_NOT_SUPPORTED.
int32_t update_fpga(const char* name);

/// Finds the FPGA image of a unit. @return the result of find_binary_compatible(); #FIRMWARE_NOT_SUPPORTED.
int32_t FindNaxFpgaBinaryFile(char* fileName, uint32_t sizeOfFileName);

/// Finds the BMU image. @return the result of find_binary_compatible().
int32_t FindKivFpgaBinaryFile(char* fileName, uint32_t sizeOfFileName);

/// Finds the boot loader's image. @return the result of find_binary_compatible().
int32_t FindUBootBinaryFile(char* fileName, uint32_t sizeOfFileName);

/// The FPGA of this unit.
/// @param chip receives its name for people, in small letters
/// @param prefix receives its chip identifier, by which images are found
/// @param id receives the driver's number of it
/// @return 0; -1, with the texts "unknown" and the number 0, when the unit has none. An output may be null.
int32_t get_fpga(const char** chip, const char** prefix, uint32_t* id);

/// The driver's number of the FPGA on this unit itself; 0 when it has none.
int32_t fpga_id_local(void);

/// Has the BMU's FPGA load its image anew, on units where it can be asked to.
/// @return 0; -1 when the unit id cannot be read.
int32_t ddal_bmu_reset(void);

#ifdef __cplusplus
}
#endif

#endif
