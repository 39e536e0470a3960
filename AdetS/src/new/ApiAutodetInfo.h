/* SPDX-License-Identifier: MIT */
/// @file ApiAutodetInfo.h
/// Which hardware does this process run on?
///
/// - *Units* are the boards of a base station; unit 0 is the one that asks. The numbers of the others, and of the ports
///   that lead to external modules, are the driver's.
/// - *Modules* are the housings that units stand in.
/// - What units and modules there are is in HardwareCatalogue.h, which a maker of boards replaces.
///
/// The functions may be called from any thread, from several at once, as soon as `Service::Startup` has brought up the
/// platform. None waits for another and none throws. Each asks the driver layer; those with "Local" in their name, and
/// those of the own module, board and CPU, do so once in the life of the process and keep what they have learnt. A
/// value that is not known, or not known yet, is never kept: the next call asks again.
///
/// Results: the functions that copy a text return 1, or 0 when the driver has failed; the others return the value, or
/// the one that stands for "unknown". Each failure of the driver is one line in the log, of severity Warning, feature
/// `ERadHwapi_PrintAdetInfo`: "ApiGetUnitId(): ddal_devicetree_get_unit_id() returned '0x5' (not DDAL_OK)".
///
/// Buffers: @p length is the size of @p buffer in bytes. Two rules for how a text gets there:
/// - ApiGetUnitId(), ApiGetUnitProductionCode() and ApiGetUnitSerialNumber() have the driver write into the buffer, and
///   the driver terminates the text: at most @p length - 1 characters. A @p length of 0 is a failure. Macro simulation,
///   see below, may leave a short buffer without terminator.
/// - All others copy as `strncpy` does: at most @p length characters, the rest of the buffer filled with zeros, and *no
///   terminator when the text fills the buffer*. Give a byte more than the text has and start it at 0. A @p length of 0
///   copies nothing and is no failure.
///
/// While the R&D parameter `ERadHwapi_SimulateMacroREC` is set, three kinds of units and two of modules are shown as
/// their macro counterparts: id, HW/SW id, all that follows from it, and production code. What has been kept before
/// stays.
#ifndef NEW_API_AUTODET_INFO_H
#define NEW_API_AUTODET_INFO_H

#include "AaTypes.h"
#include "new/HardwareCatalogue.h"
#include "new/Int32Enum.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Variants of a Tarn unit's board.
enum ADETS_INT32_ENUM(ETarnBoardType) {
    ETarnBoardType_Single = 0,     ///< no redundant pair
    ETarnBoardType_Master = 1,     ///< of a redundant pair
    ETarnBoardType_Slave = 2,      ///< of a redundant pair
    ETarnBoardType_Pico = 3,       ///< a Pico board
    ETarnBoardType_Vesper_4x4 = 4, ///< a Vesper 4x4 board
    ETarnBoardType_Pico_DB = 5,    ///< a Pico_DB board
    ETarnBoardType_Unknown = 6,    ///< a board code that is not known
};
ADETS_INT32_TYPE(ETarnBoardType);

/// Radio access technologies that a Tarn unit is made for.
enum ADETS_INT32_ENUM(ETarnRatType) {
    ETarnRatType_FDLte = 0,   ///< LTE with frequency division duplex
    ETarnRatType_TDLte = 1,   ///< LTE with time division duplex
    ETarnRatType_Wcdma = 2,   ///< WCDMA
    ETarnRatType_Unknown = 3, ///< the unit is not known to be a Tarn unit
};
ADETS_INT32_TYPE(ETarnRatType);

/// What ApiGetSlotIdFromBoardId() returns for a board id that has no slot.
#define ADETS_NO_SLOT 255

// The id of a unit.

/// Reads the id of a unit, four or five characters. The driver terminates it; only where macro simulation puts five
/// characters into a buffer of 5 bytes they stand there without terminator.
/// @return 1; 0 when the driver has failed
TBoolean ApiGetUnitId(uint32_t unitId, char* buffer, uint32_t length);

/// Copies the id of the own unit, its first 6 characters. Kept.
TBoolean ApiGetLocalUnitId(char* buffer, uint32_t length);

// The HW/SW id of a unit and what it decodes to.

/// Reads the HW/SW id of a unit: bits 20 to 23 are its type, bits 12 to 23 its version, the rest is the software's.
/// @return 0 when the driver has failed
uint32_t ApiGetUnitHwSwId(uint32_t unitId);
/// Returns the HW/SW id of the own unit. Kept.
uint32_t ApiGetLocalUnitHwSwId(void);

/// Returns the HW id of a unit: bits 12 to 23 of its HW/SW id as a number of 12 bits; 0 when the driver has failed.
uint32_t ApiGetUnitHwId(uint32_t unitId);
/// Returns the HW id of the own unit. Kept.
uint32_t ApiGetLocalUnitHwId(void);

/// Looks up the type of the unit that has this HW/SW id; asks no driver. Traced at severity Debug.
EUnitType ApiGetUnitTypeFromHwSwId(uint32_t hwSwId);
/// Returns the type of a unit; `EUnitType_Unknown` also when the driver has failed.
EUnitType ApiGetUnitType(uint32_t unitId);
/// Returns the type of the own unit. Kept; an unknown one is asked for again.
EUnitType ApiGetLocalUnitType(void);

/// Looks up the version of the unit that has this HW/SW id; asks no driver. All HW/SW ids of Tarn units give
/// `EUnitVersion_Tarn`. Traced at severity Debug, after the type.
EUnitVersion ApiGetUnitVersionFromHwSwId(uint32_t hwSwId);
/// Returns the version of a unit; `EUnitVersion_Unknown` also when the driver has failed.
EUnitVersion ApiGetUnitVersion(uint32_t unitId);
/// Returns the version of the own unit. Kept; an unknown one is asked for again.
EUnitVersion ApiGetLocalUnitVersion(void);

// Production code and serial number of a unit.

/// Reads the production code of a unit, at most 12 characters. The driver terminates it; but where macro simulation
/// puts its 7 characters into a buffer of 7 bytes or less, they fill it and stand there without terminator.
TBoolean ApiGetUnitProductionCode(uint32_t unitId, char* buffer, uint32_t length);
/// Copies the production code of the own unit. Kept.
TBoolean ApiGetLocalUnitProductionCode(char* buffer, uint32_t length);

/// Reads the serial number of a unit, at most 16 characters.
TBoolean ApiGetUnitSerialNumber(uint32_t unitId, char* buffer, uint32_t length);
/// Copies the serial number of the own unit. Kept.
TBoolean ApiGetLocalUnitSerialNumber(char* buffer, uint32_t length);

// The place in the base station.

/// Returns the slot of a board by its id, asks no driver. The high digit is the subrack, 1 to 6; the low digit 0, 2, 3,
/// 4 is slot 0, 1, 2, 3. There is no low digit 1.
/// @return 0 to 3; #ADETS_NO_SLOT for every other id
uint8_t ApiGetSlotIdFromBoardId(uint32_t boardId);

/// Returns the number of the own board, by which the node map of the message middleware knows it: that of the own node
/// id on Tarn and two other kinds of units, that of the own RapidIO id on all others. Kept.
/// @return 0 when the map does not know it or the driver has failed
uint8_t ApiGetCurrentBoard(void);
/// Returns the number of the own CPU, found in the same way. Kept.
uint8_t ApiGetCurrentCpu(void);

// Tarn units.

/// Returns the variant of the own board: by the R&D parameter `ERadHwapi_BoardType`, by the driver's board code when
/// that is 0. Not kept. Traced at severity Debug.
ETarnBoardType ApiGetTarnBoardType(void);

/// Returns the module version that goes with ApiGetTarnBoardType(). Not kept.
EModuleVersion ApiGetTarnModuleVersion(void);

/// Returns what the own unit is made for, by the tag "sys.orv.fpga.technology" and the abilities of its transceivers.
/// Kept, except on a unit that is not a Tarn unit and when the abilities could not be read, which gives
/// `ETarnRatType_FDLte` and no line in the log.
ETarnRatType ApiGetLocalTarnRatType(void);

// Modules.

/// Copies the id of the own module, at most 7 characters. Kept.
TBoolean ApiGetModuleId(char* buffer, uint32_t length);
/// Copies the id of the external module at a port, at most 7 characters.
TBoolean ApiGetExtModuleId(uint32_t portId, char* buffer, uint32_t length);

/// Returns the version of the own module. Kept. Each comparison with the catalogue is traced at severity Debug.
EModuleVersion ApiGetModuleVersion(void);
/// Returns the version of the external module at a port. Traced in the same way.
/// @return 14 when the module's id cannot be read or is not in the catalogue. That is a version that modules have, and
///   not `EModuleVersion_Unknown`: users of external modules count on it. A line of severity Warning tells.
EModuleVersion ApiGetExtModuleVersion(uint32_t portId);

/// Copies the production code of the own module, at most 12 characters. Kept.
TBoolean ApiGetModuleProductionCode(char* buffer, uint32_t length);
/// Copies the production code of the external module at a port, at most 12 characters.
TBoolean ApiGetExtModuleProductionCode(uint32_t portId, char* buffer, uint32_t length);

/// Copies the serial number of the own module, at most 16 characters. Kept.
TBoolean ApiGetModuleSerialNumber(char* buffer, uint32_t length);
/// Copies the serial number of the external module at a port, at most 16 characters.
TBoolean ApiGetExtModuleSerialNumber(uint32_t portId, char* buffer, uint32_t length);

// The die of the main processor.

/// Copies the id of the main processor's die, at most 128 hexadecimal digits.
TBoolean ApiGetDieId(char* buffer, uint32_t length);
/// Copies the quality mark of the main processor's die, at most 8 characters.
TBoolean ApiGetDieIdQuality(char* buffer, uint32_t length);

#ifdef __cplusplus
}
#endif

#endif
