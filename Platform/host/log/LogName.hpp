// SPDX-License-Identifier: MIT
/// @file LogName.hpp
/// Under which name this process appears in the log.
#pragma once

#include <string>

namespace dorn::host {

/// Names the EE. Lines printed before bear the name of the program file. Called by AaStartupEeStartup().
void nameLog(const std::string& eeName);

} // namespace dorn::host
