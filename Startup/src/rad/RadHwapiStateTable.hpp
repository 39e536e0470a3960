// SPDX-License-Identifier: MIT
/// @file RadHwapiStateTable.hpp
/// Names and defaults of the registered R&D parameters of the domain "HWAState".
#pragma once

#include "rad/ERadHwapiState.h"
#include "rad/RadParameter.hpp"

namespace vel::hwapi::common {

/// In the order of the identifiers; not every identifier of #ERadHwapiState is registered.
inline constexpr RadParameter radHwapiStateTable[] = {
    {ERadHwapiState_CpriState, "CpriState"},
    {ERadHwapiState_StartupState, "StartupState", 0x1000},
    {ERadHwapiState_RoutingState, "RoutingState"},
    {ERadHwapiState_AdetState, "AdetState", 0x1000},
    {ERadHwapiState_SumState, "SumSState"},
    {ERadHwapiState_Sum_Orn13ConnectedState, "SumSorn13State"},
    {ERadHwapiState_Sum_Orn14ConnectedState, "SumSorn14State"},
    {ERadHwapiState_GpsState, "GpsState", 0x1000},
    {ERadHwapiState_TiltState, "TiltState", 0x1000},
    {ERadHwapiState_SwDlState, "SwDlState", 0x1000},
    {ERadHwapiState_PostState, "PostState"},
    {ERadHwapiState_ClimateState, "ClimateSState"},
    {ERadHwapiState_LedState, "LedState"},
    {ERadHwapiState_AlarmState, "AlarmState"},
    {ERadHwapiState_SrioState, "SrioState"},
    {ERadHwapiState_ResetState, "ResetSState"},
    {ERadHwapiState_AdetFirmwareFpgaState, "AdetFwFpgaState", 0x1000},
    {ERadHwapiState_AdetFirmwareUbootState, "AdetFwUbootState", 0x1000},
    {ERadHwapiState_AdetFirmwareBmuState, "AdetFwBmuState", 0x1000},
    {ERadHwapiState_ClockDiffOutputState, "ClockDiffOutputState", 0x1000},
    {ERadHwapiState_ClockGpsTimeGsmFclkOutputState, "ClockGpsTimeGsmFclkOutputState", 0x1000},
    {ERadHwapiState_ClockSingleEndedOutput1State, "ClockSingleEndedOutput1State", 0x1000},
    {ERadHwapiState_ClockSingleEndedOutput2State, "ClockSingleEndedOutput2State", 0x1000},
    {ERadHwapiState_ClockPpsOutputState, "ClockPpsOutputState", 0x1000},
    {ERadHwapiState_ClockFtmOutputState, "ClockFtmOutputState", 0x1000},
    {ERadHwapiState_ClockOCXOOvenState, "ClockOCXOOvenState", 0x1000},
    {ERadHwapiState_Clock6YOCXOOvenState, "Clock6YOCXOOvenState", 0x1000},
    {ERadHwapiState_TindleLoggerState, "TindleLoggerState"},
    {ERadHwapiState_BasebandState, "BasebandState"},
    {ERadHwapiState_HwCtrlSState, "HwCtrlSState", 0x1000},
    {ERadHwapiState_RadSState, "RadSState"},
    {ERadHwapiState_IpServiceState, "IpSState"},
    {ERadHwapiState_SfpServiceState, "SfpSState"},
    {ERadHwapiState_EacServiceState, "EacSState"},
    {ERadHwapiState_EthServiceState, "EthServiceState"},
    {ERadHwapiState_BlackboxState, "BlackboxState"},
};
static_assert(std::size(radHwapiStateTable) == 36);
static_assert(isAscending(radHwapiStateTable, RAD_HWAPI_STATE_DOMAIN << 16, ERadHwapiState_Last));

} // namespace vel::hwapi::common
