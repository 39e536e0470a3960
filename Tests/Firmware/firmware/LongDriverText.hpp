// SPDX-License-Identifier: MIT
/// @file LongDriverText.hpp
/// A driver that has much to say. A program that links it has a `ddal_strerror` of its own: the board's, but for one
/// code.
#pragma once

#include <cstdint>
#include <string>

namespace dorn::test {

/// A driver's own code, with a text of 100 characters of which none is like its neighbours.
constexpr std::int32_t talkativeCode = 12345;
std::string talkativeText();

} // namespace dorn::test
