// SPDX-License-Identifier: MIT
#include "text/Table.hpp"

#include "text/Utf8.hpp"

#include <algorithm>
#include <cassert>

namespace dorn::tool {
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
            widths[column] = std::max(widths[column], columnsOf(row[column].text));
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
            blanks += widths[column] - columnsOf(cell.text) + 2;
        }
        text += '\n';
    }
    return text;
}

} // namespace dorn::tool
