// SPDX-License-Identifier: MIT
/// @file Image.hpp
/// Firmware images for tests, made byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::test {

/// CRC-32 bit by bit, as its polynomial defines it.
std::uint32_t crcOf(std::string_view bytes);

/// Bytes that differ from their neighbours.
std::string payloadOf(std::size_t size);

/// A 32-bit word in little-endian order.
std::string wordOf(std::uint32_t value);

/// An element with text.
std::string element(const std::string& name, const std::string& text);

/// An element "trailer" with @p content.
std::string trailerOf(const std::string& content);

/// The content of a trailer that fits @p payload and the board 0x3A01.
std::string contentFor(std::string_view payload);

/// Payload, trailer text and the offset at which it begins.
std::string imageOf(const std::string& payload, const std::string& trailerText);

/// An image in which all is right, for the board 0x3A01.
std::string goodImage();

} // namespace dorn::test
