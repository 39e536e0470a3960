// SPDX-License-Identifier: MIT
/// @file NamedValue.hpp
/// Tables of the texts that stand for values in a RAML document.
#pragma once

#include <string_view>

namespace RAML {

/// An enumerator and its text in documents, a row of the tables that read and write them.
template <class Value>
struct NamedValue {
    /// As it stands in documents; compared whole, case and all.
    std::string_view text;
    /// The enumerator.
    Value value;
};

/// The value of the first row of @p table with that text, or @p otherwise.
template <class Table>
auto valueOf(std::string_view text, const Table& table, decltype(table.front().value) otherwise)
{
    for (const auto& row : table) {
        if (row.text == text) {
            return row.value;
        }
    }
    return otherwise;
}

} // namespace RAML
