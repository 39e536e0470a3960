// SPDX-License-Identifier: MIT
/// @file SystemTimerTypes.hpp
/// States of the system timer.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::systemtimer {

/// How the system timer stands to its source.
enum ETimerSyncState : std::uint32_t {
    ETimerSyncState_OutOfSync = 0,     ///< not in step with the source
    ETimerSyncState_Synchronizing = 1, ///< on the way there
    ETimerSyncState_InSync = 2         ///< in step with the source
};

} // namespace vel::hwapi::common::bif::systemtimer
