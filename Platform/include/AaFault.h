/* SPDX-License-Identifier: MIT */
/// @file AaFault.h
/// The platform's fault catalogue: what a service can report to the fault management service.
///
/// Values are part of the message and stay what they are; an integrator puts his own catalogue in the place of this
/// one. A receiver may meet values that no enumerator has.
#ifndef AA_FAULT_H
#define AA_FAULT_H

#ifdef __cplusplus
extern "C" {
#endif

/// What is wrong.
typedef enum EFaultId {
    EFaultId_BoardOverheated = 1,        ///< the board is hotter than it may be
    EFaultId_FanFailure = 2,             ///< a fan does not turn as it should
    EFaultId_PowerSupplyFailure = 3,     ///< a supply voltage is out of its range
    EFaultId_ClockReferenceLost = 4,     ///< no clock reference can be followed
    EFaultId_BasebandLinkFailure = 5,    ///< a baseband link is down
    EFaultId_ModuleUnplugged = 6,        ///< an optical module has been taken out
    EFaultId_DspFailure = 7,             ///< a DSP does not answer
    EFaultId_FpgaFailure = 8,            ///< an FPGA cannot be configured or does not answer
    EFaultId_FileSystemFailure = 9,      ///< a flash file system cannot be read or written
    EFaultId_FirmwareUpdateFailure = 10, ///< a firmware image could not be brought onto the board
    EFaultId_RedundancyLost = 11,        ///< the other unit of the pair cannot take over
    EFaultId_Last = 12,                  ///< the value after the greatest
    EFaultId_Widest = 0x7FFFFFFF         ///< no fault: lets the type hold every value that a message may bring
} EFaultId;

#ifdef __cplusplus
}
#endif

#endif
