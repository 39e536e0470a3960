// SPDX-License-Identifier: MIT
/// @file OpenFiles.hpp
/// The process's limit of open files, as a gateway needs it.
#pragma once

#include <cstddef>

namespace dorn::gateway {

/// With many nodes the usual limit is too low. It is raised to what is needed, not further: it bounds the connections
/// of strangers, who have the time of a handshake each. Where it may not be raised so far, that is logged.
/// @param nodes in the table
/// @throws host::EnvironmentError when not even the links themselves can be held; with the numbers.
void raiseOpenFiles(std::size_t nodes);

} // namespace dorn::gateway
