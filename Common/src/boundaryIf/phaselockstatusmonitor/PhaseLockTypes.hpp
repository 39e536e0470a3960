// SPDX-License-Identifier: MIT
/// @file PhaseLockTypes.hpp
/// What a phase-lock monitor finds.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::phaselockstatusmonitor {

/// What a phase-lock monitor has found.
enum EPhaseLockStatus : std::uint32_t {
    EPhaseLockStatus_Ok = 0,         ///< the phase error is within its limit
    EPhaseLockStatus_Exceed = 1,     ///< the phase error exceeds its limit
    EPhaseLockStatus_Undefined = 255 ///< there has been no sample yet
};

} // namespace vel::hwapi::common::bif::phaselockstatusmonitor
