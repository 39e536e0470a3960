// SPDX-License-Identifier: MIT
#include "board/Frame.hpp"

#include "text/Utf8.hpp"

#include <algorithm>

namespace dorn::tool {
namespace {

constexpr char32_t unknown = U'?';

/// Whether a character takes one column in every terminal: letters of the alphabets and what stands before them.
bool isNarrow(char32_t character)
{
    constexpr char32_t firstPrinted = 0x20;
    constexpr char32_t firstCombining = 0x300;
    const bool isControl = character < firstPrinted || (character >= 0x7F && character < 0xA0);
    return !isControl && character < firstCombining;
}

unsigned char byteAt(std::string_view text, std::size_t place)
{
    return place < text.size() ? static_cast<unsigned char>(text[place]) : 0;
}

/// Takes the next character off a text.
char32_t takeCharacter(std::string_view& text)
{
    const unsigned char first = byteAt(text, 0);
    const std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    std::size_t taken = 1;
    while (taken < length && isInsideCharacter(static_cast<char>(byteAt(text, taken)))) {
        character = character << 6U | (byteAt(text, taken) & 0x3FU);
        ++taken;
    }
    const bool isWhole = taken == length && (first < 0x80 || length > 1);
    text.remove_prefix(taken);
    return isWhole && isNarrow(character) ? character : unknown;
}

} // namespace

std::size_t Frame::put(std::size_t row, std::size_t column, std::string_view text, Colour colour, std::size_t width)
{
    const std::size_t end = std::min(m_size.columns, column + std::min(width, m_size.columns));
    if (row >= m_size.rows) {
        return column;
    }
    while (!text.empty() && column < end) {
        const char32_t character = takeCharacter(text);
        const bool isCut = column + 1 == end && !text.empty();
        m_cells[row * m_size.columns + column] = {isCut ? U'>' : character, colour};
        ++column;
    }
    return column;
}

void Frame::fill(std::size_t row, char32_t character, Colour colour)
{
    for (std::size_t column = 0; row < m_size.rows && column < m_size.columns; ++column) {
        m_cells[row * m_size.columns + column] = {character, colour};
    }
}

std::string Frame::rowText(std::size_t row) const
{
    std::string text;
    for (std::size_t column = 0; column < m_size.columns; ++column) {
        appendCharacter(text, at(row, column).character);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

void appendCharacter(std::string& text, char32_t character)
{
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    text += static_cast<char>(0xC0U | (character >> 6U)); // Frame has nothing of three bytes
    text += static_cast<char>(0x80U | (character & 0x3FU));
}

} // namespace dorn::tool
