// SPDX-License-Identifier: MIT
/// @file NameTable.hpp
/// Words for the numbers in messages.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace dorn::examples {

/// The name of a number in a table; "" for a number that has none.
template <std::size_t count>
constexpr const char* nameIn(const std::array<const char*, count>& names, std::uint32_t number)
{
    return number < count ? names[number] : "";
}

} // namespace dorn::examples
