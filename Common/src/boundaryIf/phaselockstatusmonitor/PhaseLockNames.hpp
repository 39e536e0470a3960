// SPDX-License-Identifier: MIT
/// @file PhaseLockNames.hpp
/// Names of what phase-lock monitors find; see EnumName.hpp.
#pragma once

#include "boundaryIf/EnumName.hpp"
#include "boundaryIf/phaselockstatusmonitor/PhaseLockTypes.hpp"

namespace vel::hwapi::common::bif::phaselockstatusmonitor {

using bif::nameOf;

/// The names of the statuses, for nameOf().
constexpr auto namesOf(EPhaseLockStatus /*of*/)
{
    return std::to_array<EnumName<EPhaseLockStatus>>({
        {EPhaseLockStatus_Ok, "Ok"},
        {EPhaseLockStatus_Exceed, "Exceed"},
        {EPhaseLockStatus_Undefined, "Undefined"},
    });
}

} // namespace vel::hwapi::common::bif::phaselockstatusmonitor
