// SPDX-License-Identifier: MIT
/// @file HwSwId.hpp
/// Hardware/software identifiers of boards.
#pragma once

#include <cstdint>

namespace vel::hwapi::firmware {

/// Whether two ids differ at most in the minor version, the lowest 8 bits.
constexpr bool isSameButMinor(std::uint32_t one, std::uint32_t other)
{
    constexpr std::uint32_t minorVersions = 0x100;
    return (one ^ other) < minorVersions;
}

} // namespace vel::hwapi::firmware
