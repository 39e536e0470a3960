// SPDX-License-Identifier: MIT
/// @file LoopbackPorts.hpp
/// TCP ports of this machine that nobody uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dorn::pair {

/// So many ports that were free a moment ago, below those that the kernel gives to connections.
/// @throws std::runtime_error when there are none.
std::vector<std::uint16_t> freeLoopbackPorts(std::size_t count);

} // namespace dorn::pair
