// SPDX-License-Identifier: MIT
/// @file OcxoNames.hpp
/// Names of what there is of the OCXO; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/ocxo/OcxoTypes.hpp"

namespace vel::hwapi::clocks::bif::ocxo {

using common::bif::nameOf;

/// The names of the sensor states, for nameOf().
constexpr auto namesOf(EClkOcxoStatusSensorState /*of*/)
{
    return std::to_array<common::bif::EnumName<EClkOcxoStatusSensorState>>({
        {EClkOcxoStatusSensorState_Ok, "Ok"},
        {EClkOcxoStatusSensorState_Fail, "Fail"},
        {EClkOcxoStatusSensorState_NotFound, "NotFound"},
    });
}

/// The names of the sensors, for nameOf().
constexpr auto namesOf(ESensorType /*of*/)
{
    return std::to_array<common::bif::EnumName<ESensorType>>({
        {ESensorType_all, "all"},
        {ESensorType_oven_current, "oven_current"},
        {ESensorType_oven_temp_ocxo, "oven_temp_ocxo"},
        {ESensorType_oven_temp_outer_oven, "oven_temp_outer_oven"},
    });
}

/// The names of the sources, for nameOf().
constexpr auto namesOf(ECalibrationValueSource /*of*/)
{
    return std::to_array<common::bif::EnumName<ECalibrationValueSource>>({
        {ECalibrationValueSource_Field, "Field"},
        {ECalibrationValueSource_Factory, "Factory"},
        {ECalibrationValueSource_Device, "Device"},
        {ECalibrationValueSource_Undefined, "Undefined"},
    });
}

} // namespace vel::hwapi::clocks::bif::ocxo
