// SPDX-License-Identifier: MIT
/// @file FaultNames.hpp
/// Faults and alarms in words.
#pragma once

#include "AaFault.h"
#include "AlarmMessages.hpp"
#include "NameTable.hpp"

#include <array>

namespace dorn::examples {

constexpr std::array<const char*, EFaultId_Last> faultNames{
    "",                        //
    "board-overheated",        // EFaultId_BoardOverheated
    "fan-failure",             // EFaultId_FanFailure
    "power-supply-failure",    // EFaultId_PowerSupplyFailure
    "clock-reference-lost",    // EFaultId_ClockReferenceLost
    "baseband-link-failure",   // EFaultId_BasebandLinkFailure
    "module-unplugged",        // EFaultId_ModuleUnplugged
    "dsp-failure",             // EFaultId_DspFailure
    "fpga-failure",            // EFaultId_FpgaFailure
    "file-system-failure",     // EFaultId_FileSystemFailure
    "firmware-update-failure", // EFaultId_FirmwareUpdateFailure
    "redundancy-lost",         // EFaultId_RedundancyLost
};

constexpr std::array<const char*, 4> alarmStateNames{"", "active", "cleared", "displaced"};
constexpr std::array<const char*, 4> alarmEventNames{"", "raised", "repeated", "ended"};

} // namespace dorn::examples
