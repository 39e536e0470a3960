// SPDX-License-Identifier: MIT
/// @file SwPllNames.hpp
/// Names of states of the software PLL; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"

namespace vel::hwapi::common::bif::swpllstatemonitor {

using bif::nameOf;

/// The names of the PLL's states, for nameOf().
constexpr auto namesOf(ESwPllState /*of*/)
{
    return std::to_array<EnumName<ESwPllState>>({
        {ESwPllState_Undefined, "Undefined"},
        {ESwPllState_Acquire0, "Acquire0"},
        {ESwPllState_Acquire1, "Acquire1"},
        {ESwPllState_Acquire2, "Acquire2"},
        {ESwPllState_Acquire3, "Acquire3"},
        {ESwPllState_TrackMed, "TrackMed"},
        {ESwPllState_TrackMax, "TrackMax"},
        {ESwPllState_Holdover, "Holdover"},
    });
}

/// The names of what can have changed, for nameOf().
constexpr auto namesOf(EChangedParam /*of*/)
{
    return std::to_array<EnumName<EChangedParam>>({
        {EChangedParam_NotSet, "NotSet"},
        {EChangedParam_ClockCalibrationStatus, "ClockCalibrationStatus"},
        {EChangedParam_SwPllState, "SwPllState"},
        {EChangedParam_HpfUpdateAllowed, "HpfUpdateAllowed"},
    });
}

/// The names of the calibration's statuses, for nameOf().
constexpr auto namesOf(EClockCalibrationStatus /*of*/)
{
    return std::to_array<EnumName<EClockCalibrationStatus>>({
        {EClockCalibrationStatus_NotStarted, "NotStarted"},
        {EClockCalibrationStatus_Ongoing, "Ongoing"},
        {EClockCalibrationStatus_Finished, "Finished"},
    });
}

/// The names of the permission's values, for nameOf().
constexpr auto namesOf(ETunerHpfUpdateAllowed /*of*/)
{
    return std::to_array<EnumName<ETunerHpfUpdateAllowed>>({
        {ETunerHpfUpdateAllowed_False, "False"},
        {ETunerHpfUpdateAllowed_True, "True"},
    });
}

} // namespace vel::hwapi::common::bif::swpllstatemonitor
