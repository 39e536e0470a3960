// SPDX-License-Identifier: MIT
/// @file DriverText.hpp
/// Texts in the caller's buffers, with the two ways in which the seam counts their lengths.
#pragma once

#include "driver/DriverCall.hpp"

#include <cstdint>
#include <limits>
#include <string>

namespace dorn::board {

constexpr std::uint32_t greatestTextLength = std::numeric_limits<std::int32_t>::max();

/// A buffer of the caller.
class TextBuffer {
public:
    /// A buffer that holds @p maxLength characters beside the terminating zero. @throws BoardFailure
    static TextBuffer ofLength(std::uint32_t maxLength, char* buffer) { return {maxLength, buffer}; }
    /// A buffer of @p size bytes. @throws BoardFailure
    static TextBuffer ofSize(std::uint32_t size, char* buffer)
    {
        return {size > greatestTextLength ? size : size - 1, buffer}; // 0 becomes too great
    }

    /// Writes a text, cut if need be, and terminates it.
    void write(const std::string& text) const { m_buffer[text.copy(m_buffer, m_maxLength)] = '\0'; }

private:
    TextBuffer(std::uint32_t maxLength, char* buffer) : m_buffer(&require(buffer)), m_maxLength(maxLength)
    {
        if (maxLength > greatestTextLength) {
            throw BoardFailure(DDAL_ERROR_INVALID_ARGUMENT, "a buffer cannot have this length");
        }
    }

    char* m_buffer;
    std::uint32_t m_maxLength;
};

} // namespace dorn::board
