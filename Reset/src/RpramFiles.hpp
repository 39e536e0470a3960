// SPDX-License-Identifier: MIT
/// @file RpramFiles.hpp
/// Where the reset-persistent fields lie.
#pragma once

#include "RpramShared.h"

#include <string>

namespace vel::hwapi::reset {

/// The directory of the files, as their streams name it.
inline constexpr const char* RPRAMPath = "/var/tmp/hwapi";

/// The same directory, as the platform's file functions name it.
inline constexpr const char* rpramPathForAaFile = "/rpram/hwapi";

/// Returns the target's path of a field's file; empty, after a line in the log, when the field has none.
std::string getFileName(ERP_RAM_field field);

} // namespace vel::hwapi::reset
