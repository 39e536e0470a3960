/* SPDX-License-Identifier: MIT */
/// @file ddal_devicetree.h
/// Who the board is: identities of units and modules as the board's device tree gives them.
///
/// - A *unit* is a plug-in unit of the base station. Unit 0 is the one this software runs on; the others are those that
///   the board knows of, by the numbers that it gives them.
/// - A *module* is the mechanical module that holds the unit. Beside the local one there are external modules, by the
///   number of the port that leads to them; port 0 leads to the local one.
///
/// Identities do not change while the board runs, so callers may keep them. A query costs at most a few file reads.
#ifndef DDAL_DEVICETREE_H
#define DDAL_DEVICETREE_H

#include "ddal_error.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Reads the unit id: the short name of the kind of unit, four or five characters on known boards.
/// @param unit 0 for the local unit
/// @param maxLength characters that @p buffer holds beside the terminating zero: a caller with 7 bytes passes 6. With 0
///   there is only the terminating zero.
/// @param buffer receives the text, @p maxLength + 1 bytes
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when there is no such unit or it has no id; the results of ddal_error.h.
int32_t ddal_devicetree_get_unit_id(uint32_t unit, uint32_t maxLength, char* buffer);

/// Reads the HW/SW id of a unit: bits 20 to 23 (mask 0xF00000) are the type of the unit, bits 12 to 23 (mask 0xFFF000)
/// its version, bits 0 to 11 the compatibility level of its software.
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when there is no such unit or it has none.
int32_t ddal_devicetree_get_hw_sw_id(uint32_t unit, uint32_t* hwSwId);

/// Reads the production code of a unit: what is printed on its type label, at most 12 characters.
/// @param bufferSize bytes of @p buffer, terminating zero included: 13 hold every production code
int32_t ddal_devicetree_get_production_code(uint32_t unit, uint32_t bufferSize, char* buffer);

/// Reads the serial number of a unit, at most 16 characters.
/// @param bufferSize bytes of @p buffer, terminating zero included: 17 hold every serial number
int32_t ddal_devicetree_get_serial_number(uint32_t unit, uint32_t bufferSize, char* buffer);

/// Reads the id of the local module, as ddal_devicetree_get_unit_id() does that of a unit. At most 7 characters.
/// @param maxLength characters without the terminating zero
int32_t ddal_devicetree_get_module_unit_id(uint32_t maxLength, char* buffer);

/// Reads the id of the external module at a port.
/// @return also #DDAL_ERROR_NOT_FOUND when the port has no module.
int32_t ddal_devicetree_get_ext_module_unit_id(uint32_t portId, uint32_t maxLength, char* buffer);

/// Reads the production code of the local module. @param bufferSize terminating zero included: 13 hold every one
int32_t ddal_devicetree_get_module_production_code(uint32_t bufferSize, char* buffer);

/// Reads the production code of the external module at a port. @param bufferSize terminating zero included
int32_t ddal_devicetree_get_ext_module_production_code(uint32_t portId, uint32_t bufferSize, char* buffer);

/// Reads the serial number of the local module. @param bufferSize terminating zero included: 17 hold every one
int32_t ddal_devicetree_get_module_serial_number(uint32_t bufferSize, char* buffer);

/// Reads the serial number of the external module at a port. @param bufferSize terminating zero included
int32_t ddal_devicetree_get_ext_module_serial_number(uint32_t portId, uint32_t bufferSize, char* buffer);

/// Reads the die id of the main processor, burnt into it by its maker: hexadecimal digits, at most 128.
/// @param bufferSize bytes of @p buffer, terminating zero included: 129 hold every die id
int32_t ddal_devicetree_get_die_id(uint32_t bufferSize, char* buffer);

/// Reads the quality mark of the main processor's die, which goes with its id: at most 8 characters.
/// @param bufferSize bytes of @p buffer, terminating zero included: 9 hold every mark
int32_t ddal_devicetree_get_die_id_quality(uint32_t bufferSize, char* buffer);

/// What the transceivers of a board can do: 96 bits. Bit 0 is the least significant one of a word.
typedef struct ddal_xcvr_hw_capability {
    uint32_t words[3]; ///< first word: #DDAL_XCVR_TD_LTE; the other bits are the board's
} ddal_xcvr_hw_capability;

/// Bit 28 of the first word: the transceivers are for time division duplex.
#define DDAL_XCVR_TD_LTE UINT32_C(0x10000000)

/// Reads what the transceivers can do.
/// @return #DDAL_OK; #DDAL_ERROR_NOT_FOUND when the board has no transceivers.
int32_t ddal_devicetree_get_xcvr_hw_capability(ddal_xcvr_hw_capability* capability);

#ifdef __cplusplus
}
#endif

#endif
