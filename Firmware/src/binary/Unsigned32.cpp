// SPDX-License-Identifier: MIT
#include "binary/Unsigned32.hpp"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace vel::hwapi::firmware {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isNegative(std::string_view text)
{
    const std::size_t sign = text.find_first_not_of(whiteSpace);
    return sign != std::string_view::npos && text[sign] == '-';
}

} // namespace

std::uint32_t toUnsigned32(const char* text, int base)
{
    constexpr unsigned long long greatest = std::numeric_limits<std::uint32_t>::max();
    const unsigned long long value = std::strtoull(text, nullptr, base);
    if (value == std::numeric_limits<unsigned long long>::max()) {
        // Beyond 64 bits, or -1: either way all bits are set.
        return static_cast<std::uint32_t>(greatest);
    }
    if (isNegative(text)) {
        return -value > greatest ? static_cast<std::uint32_t>(greatest) : static_cast<std::uint32_t>(value);
    }
    return static_cast<std::uint32_t>(std::min(value, greatest));
}

std::uint32_t numberOf(const char* text)
{
    const std::string_view view = text;
    const bool isHex = view.find("0x") != std::string_view::npos || view.find("0X") != std::string_view::npos;
    return toUnsigned32(text, isHex ? 16 : 10);
}

std::uint32_t softwareVersionOf(const char* text)
{
    return toUnsigned32(text, std::string_view(text).starts_with("0x") ? 16 : 10);
}

} // namespace vel::hwapi::firmware
