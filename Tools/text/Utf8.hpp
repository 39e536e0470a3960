// SPDX-License-Identifier: MIT
/// @file Utf8.hpp
/// Where the characters of UTF-8 text begin and end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace dorn::tool {

/// Whether a byte follows the first one of its character.
constexpr bool isInsideCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Columns that a text takes, one for each character.
inline std::size_t columnsOf(std::string_view text)
{
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInsideCharacter));
}

} // namespace dorn::tool
