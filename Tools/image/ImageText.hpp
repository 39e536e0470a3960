// SPDX-License-Identifier: MIT
/// @file ImageText.hpp
/// Firmware images for people and programs, and their trailers in XML.
#pragma once

#include "image/ImageFile.hpp"
#include "text/Json.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::tool {

/// The trailer as it stands in an image. What is empty is left out.
std::string trailerXml(const ImageFacts& facts);

/// A version as services read it, "522 (0x20A)", behind the text itself where that is another one.
std::string softwareVersionText(const std::string& text);

/// What `dorn image show` prints.
std::string imageText(const ImageFile& image, const ImageFacts& facts);

/// The same for programs.
Json imageJson(const ImageFile& image, const ImageFacts& facts);

/// What an image came to that was checked.
struct ImageVerdict {
    std::string path;
    std::int32_t result = 0; ///< of binary_validate()
    std::string reason = {}; ///< when it is refused
    std::uint32_t crc32 = 0; ///< when it is not
    std::string swVersion = {};
    std::optional<std::uint32_t> own{}; ///< the board that was asked for
    std::uint32_t fitting = 0;          ///< the id by which it is accepted
};

/// The line of an image that is not refused.
std::string verdictText(const ImageVerdict& verdict);

Json verdictJson(const ImageVerdict& verdict);

} // namespace dorn::tool
