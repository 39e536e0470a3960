// SPDX-License-Identifier: MIT
/// @file BoardRoot.hpp
/// Where the target's absolute paths lie on this machine.
#pragma once

#include <string>

namespace dorn::host {

/// What becomes of a link that a path ends with.
enum class LastLink {
    Followed,
    Kept, ///< for who removes the link itself
};

/// The path at which @p targetPath is opened: below `DORN_ROOT`, or as it stands when that is not set.
/// "." and ".." are resolved first, so that no path leads above the root. Below `DORN_ROOT` symbolic links are followed
/// here, as if the root were "/", because the kernel would follow an absolute one out of it.
/// "/rpram" is another name of "/var/tmp".
/// Empty when @p targetPath is not absolute, or leads through more than 40 links, which sets `errno` to ELOOP.
std::string boardPath(const std::string& targetPath, LastLink lastLink = LastLink::Followed);

} // namespace dorn::host
