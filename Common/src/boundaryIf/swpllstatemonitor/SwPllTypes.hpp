// SPDX-License-Identifier: MIT
/// @file SwPllTypes.hpp
/// States of the software PLL and what goes with it.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::swpllstatemonitor {

/// What the software PLL does.
enum ESwPllState : std::uint32_t {
    ESwPllState_Undefined = 0, ///< nobody has told it yet
    ESwPllState_Acquire0 = 1,  ///< acquires lock, in four stages
    ESwPllState_Acquire1 = 2,  ///< second stage
    ESwPllState_Acquire2 = 3,  ///< third stage
    ESwPllState_Acquire3 = 4,  ///< last stage
    ESwPllState_TrackMed = 5,  ///< tracks, with medium time constant
    ESwPllState_TrackMax = 6,  ///< tracks, with the longest time constant
    ESwPllState_Holdover = 7,  ///< runs on without its reference
    ESwPllState_Last = 8       ///< how many there are; no state
};

/// Which value an event reports.
enum EChangedParam : std::uint32_t {
    EChangedParam_NotSet = 0,                 ///< none
    EChangedParam_ClockCalibrationStatus = 1, ///< getClockCalibrationStatus() counts
    EChangedParam_SwPllState = 2,             ///< getSwPllState() and getPhaseError() count
    EChangedParam_HpfUpdateAllowed = 3        ///< getHpfUpdateAllowed() counts
};

/// How the calibration of the clock goes.
enum EClockCalibrationStatus : std::uint32_t {
    EClockCalibrationStatus_NotStarted = 0, ///< it has not been asked for
    EClockCalibrationStatus_Ongoing = 1,    ///< under way
    EClockCalibrationStatus_Finished = 2    ///< done
};

/// Whether the tuner may update its high-pass filter.
enum ETunerHpfUpdateAllowed : std::uint32_t { ETunerHpfUpdateAllowed_False = 0, ETunerHpfUpdateAllowed_True = 1 };

} // namespace vel::hwapi::common::bif::swpllstatemonitor
