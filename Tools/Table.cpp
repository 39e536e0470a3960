// SPDX-License-Identifier: MIT
#include "Table.hpp"

#include <algorithm>
#include <cassert>

namespace dorn::tool {
namespace {

/// Columns that UTF-8 text takes, one for each character.
std::size_t widthOf(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

} // namespace

Table::Table(std::vector<std::string> headings)
{
    std::vector<Cell> row;
    for (std::string& heading : headings) {
        row.emplace_back(std::move(heading), Colour::Faint);
    }
    m_rows.push_back(std::move(row));
}

void Table::add(std::vector<Cell> row)
{
    assert(row.size() == m_rows.front().size());
    m_rows.push_back(std::move(row));
}

std::string Table::text(const Console& console) const
{
    std::vector<std::size_t> widths(m_rows.front().size());
    for (const std::vector<Cell>& row : m_rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], widthOf(row[column].text));
        }
    }
    std::string text;
    for (const std::vector<Cell>& row : m_rows) {
        std::size_t blanks = 0;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const Cell& cell = row[column];
            if (!cell.text.empty()) {
                text.append(blanks, ' ').append(console.paint(cell.colour, cell.text));
                blanks = 0;
            }
            blanks += widths[column] - widthOf(cell.text) + 2;
        }
        text += '\n';
    }
    return text;
}

} // namespace dorn::tool
