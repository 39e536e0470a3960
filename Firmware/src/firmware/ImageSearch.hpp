// SPDX-License-Identifier: MIT
/// @file ImageSearch.hpp
/// The image that a part of the board is to get.
#pragma once

#include "firmware.h"

#include <array>
#include <cstdint>

namespace vel::hwapi::firmware {

/// Where images lie.
inline constexpr const char* imageDirectory = "/ffs/run/boot";

/// Copies a text into a buffer, cut to fit. Nothing happens to one without room.
void copyText(const char* text, char* buffer, std::uint32_t size);

/// What is looked for.
struct ImageSearch {
    const char* board;    ///< as for find_binary_multiple()
    const char* chip;     ///< chip identifier
    std::uint32_t hwSwId; ///< 0: the board's own
    std::int32_t minor;   ///< whether it may differ in the minor version
};

/// What was found.
struct FoundImage {
    std::array<char, FIRMWARE_FILE_NAME_SIZE> name{};
    std::uint32_t version = 0;
};

/// How the lines about one kind of image go.
struct ImageWords {
    const char* function; ///< whose lines they are
    const char* part;     ///< "uboot"
    int nonePriority;     ///< of the line that there is none
};

/// Finds the one image that fits, and logs it.
/// @return 1, or the result of the check that asks.
std::int32_t findTheImage(const ImageSearch& search, const ImageWords& words, FoundImage& image);

} // namespace vel::hwapi::firmware
