// SPDX-License-Identifier: MIT
/// @file Frame.hpp
/// A picture made of characters.
#pragma once

#include "Console.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::tool {

struct FrameSize {
    std::size_t rows = 24;
    std::size_t columns = 80;

    bool operator==(const FrameSize&) const = default;
};

/// One character of a picture.
struct FrameCell {
    char32_t character = U' ';
    Colour colour = Colour::None;

    bool operator==(const FrameCell&) const = default;
};

/// Rows and columns of characters. What is put outside is left out.
class Frame {
public:
    explicit Frame(FrameSize size) : m_size(size), m_cells(size.rows * size.columns) {}

    FrameSize size() const { return m_size; }
    const FrameCell& at(std::size_t row, std::size_t column) const { return m_cells[row * m_size.columns + column]; }

    /// Puts UTF-8 text at a place. Of a text that is longer than @p width columns the last one shows '>'. What is no
    /// character, or takes no column or two, stands as '?'.
    /// @return the column behind it
    std::size_t put(std::size_t row, std::size_t column, std::string_view text, Colour colour = Colour::None,
                    std::size_t width = 1000);
    /// Fills a row with a character.
    void fill(std::size_t row, char32_t character, Colour colour);

    /// A row as UTF-8 text without blanks at its end.
    std::string rowText(std::size_t row) const;

private:
    FrameSize m_size;
    std::vector<FrameCell> m_cells;
};

/// Appends a character to UTF-8 text.
void appendCharacter(std::string& text, char32_t character);

} // namespace dorn::tool
