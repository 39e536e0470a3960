// SPDX-License-Identifier: MIT
/// @file ImageMaker.hpp
/// Makes firmware images.
#pragma once

#include "image/ImageFile.hpp"

#include <functional>
#include <string>

namespace dorn::tool {

/// Called with the bytes that have been done since the last call. May throw to end the work.
using Advance = std::function<void(std::uint64_t)>;

/// A software version that is read back as a person means it. @throws UsageError when @p text is none.
std::string parseSoftwareVersion(const std::string& what, const std::string& text);

/// A HwSwId in hexadecimal digits, with or without "0x". @throws UsageError when @p text is none.
std::uint32_t parseHwSwId(const std::string& what, const std::string& text);

/// Writes payload and trailer. @param facts the length and CRC-32 in it are put right
/// @throws Failure when the board would not read it back, or it cannot be written; then @p imagePath is as it was.
void makeImage(const std::string& payloadPath, const std::string& imagePath, ImageFacts facts, const Advance& advance);

} // namespace dorn::tool
