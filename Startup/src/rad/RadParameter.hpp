// SPDX-License-Identifier: MIT
/// @file RadParameter.hpp
/// One row of a table of R&D parameters.
#pragma once

#include <cstdint>
#include <iterator>
#include <span>

namespace vel::hwapi::common {

/// An R&D parameter as it is registered with the platform.
struct RadParameter {
    std::uint32_t id;               ///< domain number << 16 | index
    const char* name;               ///< what operators call it; need not be unique
    std::uint32_t defaultValue = 0; ///< its value until somebody sets another
};

/// Tells whether the rows' identifiers ascend within [@p first, @p last).
constexpr bool isAscending(std::span<const RadParameter> rows, std::uint32_t first, std::uint32_t last)
{
    std::uint32_t least = first;
    for (const RadParameter& row : rows) {
        if (row.id < least || row.id >= last) {
            return false;
        }
        least = row.id + 1;
    }
    return true;
}

/// Tells whether the rows' identifiers are exactly [@p first, @p last), in this order.
constexpr bool isDense(std::span<const RadParameter> rows, std::uint32_t first, std::uint32_t last)
{
    return rows.size() == last - first && isAscending(rows, first, last);
}

} // namespace vel::hwapi::common
