// SPDX-License-Identifier: MIT
/// @file TreeBlob.hpp
/// Device trees as `dtc` compiles them: one flat blob.
#pragma once

#include "description/DeviceTree.hpp"

#include <cstddef>
#include <span>
#include <string>

namespace dorn::board {

/// Bytes of the largest blob that is read: tens of times what a real machine has.
constexpr std::size_t largestTreeBlob = std::size_t{1} << 20;

/// Reads the root of a blob: its properties and, of what is below it, the node @p child.
/// @throws TreeError when it is none.
TreeNode parseTreeBlob(std::span<const std::byte> blob, const std::string& child);

/// Reads the file @p path, as parseTreeBlob() does. @throws TreeError
TreeNode readTreeBlob(const std::string& path, const std::string& child);

} // namespace dorn::board
