// SPDX-License-Identifier: MIT
/// @file KeyText.hpp
/// Keys as Z85 text (ZeroMQ RFC 32): five characters of 85 for every four bytes, most significant first.
#pragma once

#include "gateway/Keys.hpp"

#include <array>
#include <optional>
#include <string_view>

namespace dorn::gateway {

/// The bytes of a key; nothing when @p text is not #keyTextLength characters of the alphabet, or one of its groups of
/// five is beyond four bytes.
std::optional<KeyBytes> keyFromText(std::string_view text);

/// The text of a key, with a terminating zero.
std::array<char, keyTextLength + 1> keyText(const KeyBytes& bytes);

} // namespace dorn::gateway
