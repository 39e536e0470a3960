/* SPDX-License-Identifier: MIT */
/// @file ERadHwapiState.h
/// R&D parameters of the domain "HWAState": what the hardware services say of themselves.
///
/// An identifier is the domain's number << 16 | index; indices 15 to 18 do not exist. The text behind an identifier is
/// the name under which operators see the parameter, followed by its default where that is not 0. Identifiers without
/// a text are not registered with the platform.
#ifndef RAD_E_RAD_HWAPI_STATE_H
#define RAD_E_RAD_HWAPI_STATE_H

#ifdef __cplusplus
extern "C" {
#endif

/// Number of the domain "HWAState".
#define RAD_HWAPI_STATE_DOMAIN 34

/// The parameters of the domain "HWAState": one for the state of each service.
typedef enum ERadHwapiState {
    ERadHwapiState_CpriState = 0x220000,                      ///< "CpriState"
    ERadHwapiState_StartupState = 0x220001,                   ///< "StartupState", 0x1000
    ERadHwapiState_RoutingState = 0x220002,                   ///< "RoutingState"
    ERadHwapiState_AdetState = 0x220003,                      ///< "AdetState", 0x1000
    ERadHwapiState_SumState = 0x220004,                       ///< "SumSState"
    ERadHwapiState_Sum_Orn13ConnectedState = 0x220005,        ///< "SumSorn13State"
    ERadHwapiState_Sum_Orn14ConnectedState = 0x220006,        ///< "SumSorn14State"
    ERadHwapiState_GpsState = 0x220007,                       ///< "GpsState", 0x1000
    ERadHwapiState_TiltState = 0x220008,                      ///< "TiltState", 0x1000
    ERadHwapiState_SwDlState = 0x220009,                      ///< "SwDlState", 0x1000
    ERadHwapiState_PostState = 0x22000A,                      ///< "PostState"
    ERadHwapiState_ClimateState = 0x22000B,                   ///< "ClimateSState"
    ERadHwapiState_LedState = 0x22000C,                       ///< "LedState"
    ERadHwapiState_AlarmState = 0x22000D,                     ///< "AlarmState"
    ERadHwapiState_SrioState = 0x22000E,                      ///< "SrioState"
    ERadHwapiState_ResetState = 0x220013,                     ///< "ResetSState"
    ERadHwapiState_AdetFirmwareFpgaState = 0x220014,          ///< "AdetFwFpgaState", 0x1000
    ERadHwapiState_AdetFirmwareUbootState = 0x220015,         ///< "AdetFwUbootState", 0x1000
    ERadHwapiState_AdetFirmwareBmuState = 0x220016,           ///< "AdetFwBmuState", 0x1000
    ERadHwapiState_ClockDiffOutputState = 0x220017,           ///< "ClockDiffOutputState", 0x1000
    ERadHwapiState_ClockGpsTimeGsmFclkOutputState = 0x220018, ///< "ClockGpsTimeGsmFclkOutputState", 0x1000
    ERadHwapiState_ClockSingleEndedOutput1State = 0x220019,   ///< "ClockSingleEndedOutput1State", 0x1000
    ERadHwapiState_ClockSingleEndedOutput2State = 0x22001A,   ///< "ClockSingleEndedOutput2State", 0x1000
    ERadHwapiState_ClockPpsOutputState = 0x22001B,            ///< "ClockPpsOutputState", 0x1000
    ERadHwapiState_ClockFtmOutputState = 0x22001C,            ///< "ClockFtmOutputState", 0x1000
    ERadHwapiState_ClockOCXOOvenState = 0x22001D,             ///< "ClockOCXOOvenState", 0x1000
    ERadHwapiState_Clock6YOCXOOvenState = 0x22001E,           ///< "Clock6YOCXOOvenState", 0x1000
    ERadHwapiState_TindleLoggerState = 0x22001F,              ///< "TindleLoggerState"
    ERadHwapiState_GnssState = 0x220020,                      ///< not registered: nothing is published here
    ERadHwapiState_TimeState = 0x220021,                      ///< not registered: nothing is published here
    ERadHwapiState_HwabbState = 0x220022,                     ///< not registered: nothing is published here
    ERadHwapiState_BasebandState = 0x220023,                  ///< "BasebandState"
    ERadHwapiState_HwCtrlSState = 0x220024,                   ///< "HwCtrlSState", 0x1000
    ERadHwapiState_HwaSwdlState = 0x220025,                   ///< not registered: nothing is published here
    ERadHwapiState_BistState = 0x220026,                      ///< not registered: nothing is published here
    ERadHwapiState_SyncManagerState = 0x220027,               ///< not registered: nothing is published here
    ERadHwapiState_RadSState = 0x220028,                      ///< "RadSState"
    ERadHwapiState_CCToolState = 0x220029,                    ///< not registered: nothing is published here
    ERadHwapiState_IpServiceState = 0x22002A,                 ///< "IpSState"
    ERadHwapiState_SupervisorServiceState = 0x22002B,         ///< not registered: nothing is published here
    ERadHwapiState_SfpServiceState = 0x22002C,                ///< "SfpSState"
    ERadHwapiState_EacServiceState = 0x22002D,                ///< "EacSState"
    ERadHwapiState_EthServiceState = 0x22002E,                ///< "EthServiceState"
    ERadHwapiState_BlackboxState = 0x22002F,                  ///< "BlackboxState"
    ERadHwapiState_SyncState = 0x220030,                      ///< not registered: nothing is published here
    ERadHwapiState_SelfTestSState = 0x220031,                 ///< not registered: nothing is published here
    ERadHwapiState_Last = 0x220032                            ///< the identifier after the greatest
} ERadHwapiState;

#ifdef __cplusplus
}
#endif

#endif
