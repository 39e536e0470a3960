// SPDX-License-Identifier: MIT
/// @file SourceLines.hpp
/// Lines of a text that a message points at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::tool {

/// Shows places of a text. Asked for places in the order of the text, it goes through it once.
class SourceLines {
public:
    explicit SourceLines(std::string_view text) : m_text(text) {}

    /// The line with its number, and a caret below the column; of a long line the part around the column. Both lines
    /// end with a line feed. Empty when there is no such line.
    /// @param line from 1; lines end with LF, CR LF or CR
    /// @param column from 1, in bytes
    std::string excerpt(std::uint32_t line, std::uint32_t column);

private:
    bool goTo(std::uint32_t line);
    std::string_view current() const;

    std::string_view m_text;
    std::uint32_t m_line = 1;
    std::size_t m_begin = 0; ///< of that line
};

} // namespace dorn::tool
