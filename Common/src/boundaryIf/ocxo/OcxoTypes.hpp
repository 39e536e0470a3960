// SPDX-License-Identifier: MIT
/// @file OcxoTypes.hpp
/// Sensors and calibration of the oven-controlled crystal oscillator (OCXO).
#pragma once

#include <cstdint>

namespace vel::hwapi::clocks::bif::ocxo {

/// Whether the value of a sensor can be believed.
enum EClkOcxoStatusSensorState : std::uint32_t {
    EClkOcxoStatusSensorState_Ok = 0,      ///< it can
    EClkOcxoStatusSensorState_Fail = 1,    ///< the sensor is there and cannot be read
    EClkOcxoStatusSensorState_NotFound = 2 ///< the board has no such sensor
};

/// Which sensors are asked for.
enum ESensorType : std::uint32_t {
    ESensorType_all = 0,                 ///< every sensor there is
    ESensorType_oven_current = 1,        ///< what the oven draws
    ESensorType_oven_temp_ocxo = 2,      ///< temperature of the oscillator
    ESensorType_oven_temp_outer_oven = 3 ///< temperature of the outer oven
};

/// Where a calibration value comes from.
enum ECalibrationValueSource : std::uint32_t {
    ECalibrationValueSource_Field = 0,    ///< was measured in the field
    ECalibrationValueSource_Factory = 1,  ///< was measured in the factory
    ECalibrationValueSource_Device = 2,   ///< the oscillator says so itself
    ECalibrationValueSource_Undefined = 3 ///< there is none
};

/// What the oven draws.
struct SClkOcxoStatusSensorOvenCurrent {
    /// Whether the currents count.
    EClkOcxoStatusSensorState state;
    /// The greatest current that is allowed.
    unsigned int max_val;
    /// The least current that is allowed.
    unsigned int min_val;
    /// The current.
    unsigned int curr_val;
};

/// Temperature of the outer oven.
struct SClkOcxoStatusSensorOvenTempOuterOven {
    /// Whether the temperature counts.
    EClkOcxoStatusSensorState state;
    /// In thousandths of a degree Celsius.
    int millicelsius;
    /// What the sensor says of its alarm.
    int alarm_state;
};

/// Temperature of the oscillator.
struct SClkOcxoStatusSensorOvenTempOcxo {
    /// Whether the temperature counts.
    EClkOcxoStatusSensorState state;
    /// In thousandths of a degree Celsius.
    int millicelsius;
    /// What the sensor says of there being no alarm.
    int no_alarm;
};

/// What all sensors say.
struct SClkOcxoStatuses {
    /// What the oven draws.
    SClkOcxoStatusSensorOvenCurrent curr_ocxo;
    /// Temperature of the outer oven.
    SClkOcxoStatusSensorOvenTempOuterOven temp_ooven;
    /// Temperature of the oscillator.
    SClkOcxoStatusSensorOvenTempOcxo temp_ocxo;
};

} // namespace vel::hwapi::clocks::bif::ocxo
