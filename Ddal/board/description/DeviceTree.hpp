// SPDX-License-Identifier: MIT
/// @file DeviceTree.hpp
/// A device tree in memory, wherever it came from.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::board {

/// A property's value as the blob has it: numbers big-endian, each string with its terminating zero.
using TreeBytes = std::vector<std::byte>;

/// One property of a node.
struct TreeProperty {
    std::string name; ///< as in the source: "compatible", "#address-cells"
    TreeBytes value;  ///< empty when the property only has to be there
};

/// A node with everything below it.
struct TreeNode {
    std::string name;                     ///< with its unit address: "unit@0"; empty for the root
    std::vector<TreeProperty> properties; ///< in the order of the blob; of a directory by name
    std::vector<TreeNode> children;       ///< in the order of the blob; of a directory by name
};

/// Nodes below each other that a reader follows; no board has so many.
constexpr unsigned deepestTree = 16;

/// Why something is no device tree. The text goes on where "board description 'x' " ends: "is truncated: ...".
class TreeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Requires that @p name is made of the characters that names in a device tree have, so that it may be printed.
/// @throws TreeError
void requireTreeName(std::string_view name);

} // namespace dorn::board
