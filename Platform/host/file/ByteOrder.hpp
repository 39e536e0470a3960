// SPDX-License-Identifier: MIT
/// @file ByteOrder.hpp
/// Byte order.
#pragma once

#include <bit>
#include <cstdint>

namespace dorn::host {

/// The value of a word whose bytes stand in little-endian order, on a processor of order @p native.
template <std::endian native = std::endian::native>
constexpr std::uint32_t fromLittleEndian(std::uint32_t word)
{
    if constexpr (native == std::endian::little) {
        return word;
    }
    return __builtin_bswap32(word);
}

} // namespace dorn::host
