// SPDX-License-Identifier: MIT
/// @file HexReader.hpp
/// Takes a line of hexadecimal numbers apart.
#pragma once

#include <cstdint>

namespace vel::hwapi::common::post {

/// Reads on behind what it has read before. White space in front is passed over.
class HexReader {
public:
    /// @param text stays valid as long as the reader
    explicit HexReader(const char* text) : m_at(text) {}

    /// Reads a number: a sign and the prefix "0x" are allowed; the prefix alone is 0. One of more than 32 bits is
    /// 0xFFFFFFFF.
    /// @return false, with @p number as it was, when there is none.
    bool number(std::uint32_t& number);
    /// Passes over a character. @return false when it is not there.
    bool character(char expected);

private:
    const char* m_at;
};

} // namespace vel::hwapi::common::post
