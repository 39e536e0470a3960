// SPDX-License-Identifier: MIT
#include "text/SourceLines.hpp"

#include "text/Utf8.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace dorn::tool {
namespace {

constexpr std::size_t width = 100;      // bytes of a line that are shown
constexpr std::size_t widthBefore = 40; // of these in front of the column, when the line is longer

/// How many bytes the UTF-8 character at the begin of @p text has; 0 when they are none.
std::size_t characterLength(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    const std::string_view character = text.substr(0, length);
    const bool isWhole = character.size() == length && first < 0xF8 &&
                         std::all_of(character.begin() + (length == 0 ? 0 : 1), character.end(), isInsideCharacter);
    return isWhole ? length : 0;
}

/// @p text on one line, tabulators as blanks, bytes that are no characters as `\xNN`.
std::string shown(std::string_view text)
{
    std::string line;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            std::array<char, 5> byte{};
            std::snprintf(byte.data(), byte.size(), "\\x%02x", static_cast<unsigned char>(text.front()));
            line += byte.data();
        } else {
            line += text.front() == '\t' ? " " : printable(std::string(text.substr(0, length)));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return line;
}

} // namespace

std::string SourceLines::excerpt(std::uint32_t line, std::uint32_t column)
{
    if (!goTo(line)) {
        return {};
    }
    const std::string_view whole = current();
    const std::size_t at = std::min<std::size_t>(column == 0 ? 0 : column - 1, whole.size());
    std::size_t begin = whole.size() > width && at > widthBefore ? at - widthBefore : 0;
    while (begin < at && begin > 0 && isInsideCharacter(whole[begin])) {
        ++begin;
    }
    const std::string number = "  " + std::to_string(line) + " | ";
    const std::string before = shown(whole.substr(begin, at - begin));
    std::size_t end = std::min(begin + width, whole.size());
    while (end > at && end < whole.size() && isInsideCharacter(whole[end])) {
        --end;
    }
    const std::string after = shown(whole.substr(at, end - at));
    return number + before + after + "\n" + std::string(number.size() - 2, ' ') + "| " +
           std::string(columnsOf(before), ' ') + "^\n";
}

bool SourceLines::goTo(std::uint32_t line)
{
    if (line < m_line) {
        m_line = 1;
        m_begin = 0;
    }
    while (m_line < line) {
        const std::size_t end = m_text.find_first_of("\r\n", m_begin);
        if (end == std::string_view::npos) {
            return false;
        }
        const bool isTwo = m_text.substr(end, 2) == "\r\n";
        m_begin = end + (isTwo ? 2 : 1);
        ++m_line;
    }
    return true;
}

std::string_view SourceLines::current() const
{
    return m_text.substr(m_begin, m_text.find_first_of("\r\n", m_begin) - m_begin);
}

} // namespace dorn::tool
