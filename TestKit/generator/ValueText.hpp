// SPDX-License-Identifier: MIT
/// @file ValueText.hpp
/// Values of parameters that are made for a test.
#pragma once

#include "generator/RandomNumbers.hpp"

#include <cstdint>
#include <string>

namespace dorn::testkit {

/// Which characters that must be escaped in XML a value may have.
enum class SpecialCharacters { None, AtMostOne, Any };

/// A value of 0 to twice @p averageBytes bytes, as it is meant: a number, or words, in UTF-8 and now and then beyond
/// ASCII.
std::string valueText(RandomNumbers& random, std::uint32_t averageBytes, SpecialCharacters specials);

/// @p text as it stands in a document.
std::string escaped(const std::string& text);

} // namespace dorn::testkit
