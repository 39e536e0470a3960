// SPDX-License-Identifier: MIT
/// @file SystemTimerTypes.hpp
/// States of the system timer.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::systemtimer {

/// How the system timer stands to its source.
enum ETimerSyncState : std::uint32_t {
    ETimerSyncState_OutOfSync = 0,
    ETimerSyncState_Synchronizing = 1,
    ETimerSyncState_InSync = 2
};

} // namespace vel::hwapi::common::bif::systemtimer
