// SPDX-License-Identifier: MIT
/// @file TreeDirectory.hpp
/// Device trees as the kernel shows them: a directory for each node, a file for each property.
#pragma once

#include "description/DeviceTree.hpp"

#include <cstddef>
#include <string>

namespace dorn::board {

/// Bytes of the largest property and number of entries that are read: a wrong path does not lead far.
constexpr std::size_t largestTreeProperty = std::size_t{64} << 10;
constexpr std::size_t mostTreeEntries = 4096;

/// Reads the directory @p path as the root of a tree: its properties and, of what is below it, the node @p child.
/// @throws TreeError when it is none.
TreeNode readTreeDirectory(const std::string& path, const std::string& child);

} // namespace dorn::board
