// SPDX-License-Identifier: MIT
/// @file FixedText.hpp
/// Texts in records of shared memory: as many characters as there is room for, and zeros behind them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

namespace dorn::host {

/// Writes a text, cut off where it is too long for one zero behind it.
template <std::size_t Size>
void copyText(std::array<char, Size>& to, const std::string& from)
{
    to.fill('\0');
    std::copy_n(from.begin(), std::min(from.size(), Size - 1), to.begin());
}

/// Reads a text, which may lack its zero: another process has written it.
template <std::size_t Size>
std::string textOf(const std::array<char, Size>& from)
{
    return {from.data(), strnlen(from.data(), Size)};
}

} // namespace dorn::host
