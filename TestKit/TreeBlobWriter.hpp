// SPDX-License-Identifier: MIT
/// @file TreeBlobWriter.hpp
/// Writes device trees as `dtc` does.
#pragma once

#include "description/DeviceTree.hpp"

#include <string>

namespace dorn::testkit {

/// The blob of a tree. Names and values may be any bytes, also such as no device tree has.
/// @throws std::length_error when it would have more than a mebibyte.
std::string treeBlob(const board::TreeNode& root);

} // namespace dorn::testkit
