// SPDX-License-Identifier: MIT
/// @file SystemTimerNames.hpp
/// Names of states of the system timer; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/systemtimer/SystemTimerTypes.hpp"

namespace vel::hwapi::common::bif::systemtimer {

using bif::nameOf;

/// The names of the states, for nameOf().
constexpr auto namesOf(ETimerSyncState /*of*/)
{
    return std::to_array<EnumName<ETimerSyncState>>({
        {ETimerSyncState_OutOfSync, "OutOfSync"},
        {ETimerSyncState_Synchronizing, "Synchronizing"},
        {ETimerSyncState_InSync, "InSync"},
    });
}

} // namespace vel::hwapi::common::bif::systemtimer
