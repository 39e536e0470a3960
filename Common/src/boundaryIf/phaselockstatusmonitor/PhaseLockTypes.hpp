// SPDX-License-Identifier: MIT
/// @file PhaseLockTypes.hpp
/// What a phase-lock monitor finds.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::bif::phaselockstatusmonitor {

enum EPhaseLockStatus : std::uint32_t {
    EPhaseLockStatus_Ok = 0,
    EPhaseLockStatus_Exceed = 1, ///< the phase error exceeds its limit
    EPhaseLockStatus_Undefined = 255
};

} // namespace vel::hwapi::common::bif::phaselockstatusmonitor
