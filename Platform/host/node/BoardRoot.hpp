// SPDX-License-Identifier: MIT
/// @file BoardRoot.hpp
/// Where the target's absolute paths lie on this machine.
#pragma once

#include <string>

namespace dorn::host {

/// The path at which @p targetPath is opened: below `DORN_ROOT`, or as it stands when that is not set.
/// "." and ".." are resolved first, so that no path leads above the root. Empty when @p targetPath is not absolute.
std::string boardPath(const std::string& targetPath);

} // namespace dorn::host
