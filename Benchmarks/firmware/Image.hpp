// SPDX-License-Identifier: MIT
/// @file Image.hpp
/// The image that all firmware benchmarks work on.
#pragma once

#include <cstdint>
#include <string>

namespace dorn::testkit {
class TestNode;
}

namespace dorn::benchmarks {

constexpr std::uint32_t payloadLength = 64U << 20;
constexpr std::uint32_t hwSwId = 0x3A01;
constexpr const char* imagePath = "/image.bin"; ///< on the board
constexpr const char* copyPath = "/payload";    ///< on the board

/// Makes it on the board of a node.
void writeImage(const testkit::TestNode& node);

/// Where a file of the board lies on this machine.
const std::string& imagePlace();
const std::string& copyPlace();

/// Its payload, and the CRC-32 of that.
const std::string& payload();
std::uint32_t payloadCrc();

} // namespace dorn::benchmarks
