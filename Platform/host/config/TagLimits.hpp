// SPDX-License-Identifier: MIT
/// @file TagLimits.hpp
/// What a tag can hold.
#pragma once

#include <cstddef>

namespace dorn::host {

constexpr std::size_t maximumTagName = 255;     ///< bytes of a name; it has at least one
constexpr std::size_t maximumTagValue = 65'535; ///< bytes of a value

} // namespace dorn::host
