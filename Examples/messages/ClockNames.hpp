// SPDX-License-Identifier: MIT
/// @file ClockNames.hpp
/// The board's clocks in words.
#pragma once

#include "ClockMessages.hpp"
#include "NameTable.hpp"

#include <array>

namespace dorn::examples {

/// ESwPllState
constexpr std::array<const char*, 8> swPllStateNames{"undefined", "acquire0",  "acquire1",  "acquire2",
                                                     "acquire3",  "track-med", "track-max", "holdover"};
/// ETimerSyncState
constexpr std::array<const char*, 3> timerSyncStateNames{"out-of-sync", "synchronizing", "in-sync"};
/// EClockCalibrationStatus
constexpr std::array<const char*, 3> calibrationStatusNames{"not-started", "ongoing", "finished"};
/// As OcxoCallbackParam::getDacSettingStatus() gives it.
constexpr std::array<const char*, 3> dacStatusNames{"not-ok", "ok", "near-limit"};

/// The name of an EPhaseLockStatus; "" for a number that has none.
constexpr const char* phaseLockStatusName(std::uint32_t status)
{
    constexpr std::array<const char*, 2> names{"ok", "exceed"};
    return status == 255 ? "undefined" : nameIn(names, status);
}

} // namespace dorn::examples
