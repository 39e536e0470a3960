// SPDX-License-Identifier: MIT
/// @file TreeFile.hpp
/// Reads the files that a device tree lies in.
#pragma once

#include "description/DeviceTree.hpp"

#include <cstddef>
#include <string>

namespace dorn::board {

/// The content of the file @p path. @throws TreeError when it cannot be read, is no file or has more than @p largest
/// bytes.
TreeBytes readTreeFile(const std::string& path, std::size_t largest);

} // namespace dorn::board
