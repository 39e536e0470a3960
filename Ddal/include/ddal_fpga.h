/* SPDX-License-Identifier: MIT */
/// @file ddal_fpga.h
/// FPGAs and what is treated like one (the board-management unit): active version, and flashing new images.
#ifndef DDAL_FPGA_H
#define DDAL_FPGA_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Flash slots of an FPGA. It is configured from the primary one, and from the secondary one when that cannot be used.
typedef enum ddal_fpga_slot {
    DDAL_FPGA_SLOT_PRIMARY = 1,  ///< the image that an FPGA loads
    DDAL_FPGA_SLOT_SECONDARY = 2 ///< what it loads when that cannot be used
} ddal_fpga_slot;

/// Reads the version of the image that an FPGA runs.
/// @param fpgaId the driver's number of the FPGA: 0 and 1 are the board-management unit, the others have the family in
///   the upper 16 bits and the number within it in the lower ones
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when the board has no such FPGA.
int32_t ddal_fpga_get_active_version(uint32_t fpgaId, uint32_t* version);

/// Writes an image into a slot of an FPGA's flash. The FPGA runs on with what it has until it is reset, so that the
/// active version does not change by this. Returns when the flash has been written, which may take minutes on a real
/// board.
/// @param slot a value of #ddal_fpga_slot
/// @param path the image, without trailer, as the flash takes it
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when there is no such FPGA; #DDAL_ERROR_INVALID_ARGUMENT when it has no such
///   slot; #DDAL_ERROR_BAD_FILE when the file cannot be read or is empty; #DDAL_ERROR_NO_RESOURCE when it is larger
///   than the slot; #DDAL_ERROR_BUSY while somebody else writes the slot.
int32_t ddal_fpga_update_mod(uint32_t fpgaId, uint32_t slot, const char* path);

#ifdef __cplusplus
}
#endif

#endif
