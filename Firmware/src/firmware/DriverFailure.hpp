// SPDX-License-Identifier: MIT
/// @file DriverFailure.hpp
/// Log lines about drivers.
#pragma once

#include <cstdint>

namespace vel::hwapi::firmware {

/// Logs that a driver function has failed.
/// @param function whose line it is
/// @param driverFunction which one was called
void logDriverFailure(const char* function, const char* driverFunction, std::int32_t code);

} // namespace vel::hwapi::firmware
