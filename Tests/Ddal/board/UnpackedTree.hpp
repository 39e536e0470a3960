// SPDX-License-Identifier: MIT
/// @file UnpackedTree.hpp
/// Device trees as the kernel shows them, made by a test.
#pragma once

#include "TestNode.hpp"
#include "description/DeviceTree.hpp"

#include <filesystem>
#include <string>

namespace dorn::board {

/// Writes a node as the directory @p path of the target.
inline void unpackTree(const testkit::TestNode& testNode, const TreeNode& node, const std::string& path)
{
    std::filesystem::create_directories(testNode.boardPath(path));
    for (const TreeProperty& property : node.properties) {
        testNode.writeBoardFile(path + "/" + property.name,
                                {reinterpret_cast<const char*>(property.value.data()), property.value.size()});
    }
    for (const TreeNode& child : node.children) {
        unpackTree(testNode, child, path + "/" + child.name);
    }
}

} // namespace dorn::board
