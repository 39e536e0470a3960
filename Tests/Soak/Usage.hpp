// SPDX-License-Identifier: MIT
/// @file Usage.hpp
/// What a board takes from the machine.
#pragma once

#include <cstddef>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::soak {

/// At one moment.
struct Usage {
    std::size_t descriptors = 0;        ///< that this process has open
    std::size_t children = 0;           ///< of this process, dead ones that nobody reaped included
    std::size_t ownKilobytes = 0;       ///< of memory that this process has
    std::size_t serviceDescriptors = 0; ///< that all services together have open
    std::size_t serviceKilobytes = 0;   ///< of memory that all services together have
    std::size_t files = 0;              ///< in the run directory
};

/// @param services their processes
Usage usageOf(const std::vector<pid_t>& services, const std::string& runDirectory);

/// What has grown beyond what is usual; empty when nothing has.
std::string growth(const Usage& before, const Usage& now);

/// "own: 14 descriptors, 15 children, 9000 KiB; ..."
std::string usageText(const Usage& usage);

} // namespace dorn::soak
