// SPDX-License-Identifier: MIT
/// @file RedundancyNames.hpp
/// Redundancy in words.
#pragma once

#include "NameTable.hpp"
#include "RedundancyMessages.hpp"

#include <array>

namespace dorn::examples {

constexpr std::array<const char*, vel::hwapi::common::ERedundancyMode_All + 1> redundancyModeNames{
    "", "none", "real-time", "switchover", "all"};

constexpr std::array<const char*, vel::hwapi::common::ERedundancyCommand_ReleaseHwLatch + 1> redundancyCommandNames{
    "",
    "none",
    "card-state",
    "replication-state",
    "prepare-standby",
    "prepare-active",
    "release-active",
    "enable-active",
    "take-hw-latch",
    "release-hw-latch",
};

constexpr std::array<const char*, vel::hwapi::common::ERedundancyState_MateStandby + 1> redundancyStateNames{
    "",
    "ready",
    "hwapi-failure",
    "tessel-failure",
    "unfinished",
    "no-mate-card",
    "self-active",
    "self-standby",
    "mate-active",
    "mate-standby",
};

/// The name of an ERedundancyState; "" for a number that has none.
constexpr const char* redundancyStateName(std::uint32_t state)
{
    return state == vel::hwapi::common::ERedundancyState_Timeout ? "timeout" : nameIn(redundancyStateNames, state);
}

constexpr std::array<const char*, EUnitRole_Between + 1> unitRoleNames{"standby", "active", "between"};

} // namespace dorn::examples
