// SPDX-License-Identifier: MIT
/// @file OcxoTypes.hpp
/// Sensors and calibration of the oven-controlled crystal oscillator (OCXO).
#pragma once

#include <cstdint>

namespace vel::hwapi::clocks::bif::ocxo {

enum EClkOcxoStatusSensorState : std::uint32_t {
    EClkOcxoStatusSensorState_Ok = 0,
    EClkOcxoStatusSensorState_Fail = 1,
    EClkOcxoStatusSensorState_NotFound = 2
};

/// Which sensors are asked for.
enum ESensorType : std::uint32_t {
    ESensorType_all = 0,
    ESensorType_oven_current = 1,
    ESensorType_oven_temp_ocxo = 2,
    ESensorType_oven_temp_outer_oven = 3
};

/// Where a calibration value comes from.
enum ECalibrationValueSource : std::uint32_t {
    ECalibrationValueSource_Field = 0,
    ECalibrationValueSource_Factory = 1,
    ECalibrationValueSource_Device = 2,
    ECalibrationValueSource_Undefined = 3
};

/// What the oven draws.
struct SClkOcxoStatusSensorOvenCurrent {
    EClkOcxoStatusSensorState state;
    unsigned int max_val;
    unsigned int min_val;
    unsigned int curr_val;
};

/// Temperature of the outer oven.
struct SClkOcxoStatusSensorOvenTempOuterOven {
    EClkOcxoStatusSensorState state;
    int millicelsius;
    int alarm_state;
};

/// Temperature of the oscillator.
struct SClkOcxoStatusSensorOvenTempOcxo {
    EClkOcxoStatusSensorState state;
    int millicelsius;
    int no_alarm;
};

struct SClkOcxoStatuses {
    SClkOcxoStatusSensorOvenCurrent curr_ocxo;
    SClkOcxoStatusSensorOvenTempOuterOven temp_ooven;
    SClkOcxoStatusSensorOvenTempOcxo temp_ocxo;
};

} // namespace vel::hwapi::clocks::bif::ocxo
