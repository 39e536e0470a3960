// SPDX-License-Identifier: MIT
/// @file Table.hpp
/// Rows of text in columns.
#pragma once

#include "Console.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

struct Cell {
    Cell(std::string content, Colour paint = Colour::None) : text(std::move(content)), colour(paint) {}
    Cell(const char* content) : text(content) {}

    std::string text;
    Colour colour = Colour::None;
};

/// A table whose columns are as wide as their widest cell; two blanks between columns, none at the end of a line.
class Table {
public:
    explicit Table(std::vector<std::string> headings);

    /// Adds a row with a cell for each heading.
    void add(std::vector<Cell> row);

    /// The headings and the rows, each with a line feed.
    std::string text(const Console& console) const;

private:
    std::vector<std::vector<Cell>> m_rows;
};

} // namespace dorn::tool
