// SPDX-License-Identifier: MIT
/// @file Values.hpp
/// What people write on a command line and read in an answer: numbers, bytes, times.
#pragma once

#include "port/Clock.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::tool {

using Bytes = std::vector<std::byte>;
using BytesView = std::span<const std::byte>;

/// A number in decimal or, behind "0x", in hexadecimal digits. @return nothing when @p text is none, or one beyond 64
/// bits.
std::optional<std::uint64_t> readNumber(const std::string& text);

/// The number that a person gave for @p what. @throws UsageError when it is none or greater than @p greatest.
std::uint64_t parseNumber(const std::string& what, const std::string& text, std::uint64_t greatest);

/// The same for a number of an unsigned type, which says how great it may be.
template <class Unsigned>
Unsigned parseUnsigned(const std::string& what, const std::string& text)
{
    return static_cast<Unsigned>(parseNumber(what, text, std::numeric_limits<Unsigned>::max()));
}

/// The size that a person gave for @p what: "1000000", or "256M" with a unit of 1024 bytes and its powers. At most
/// 1024G.
/// @throws UsageError
std::uint64_t parseSize(const std::string& what, const std::string& text);

/// "250 B", "1.5 KiB", "12 MiB"
std::string sizeText(std::uint64_t bytes);

/// The duration that a person gave for @p what, in seconds with or without decimals, up to a million.
/// @throws UsageError
host::Nanoseconds parseSeconds(const std::string& what, const std::string& text);

/// The bytes that a person gave for @p what: hexadecimal digits in pairs, blanks and colons between bytes as one likes,
/// with or without "0x" in front. @throws UsageError
Bytes parseHex(const std::string& what, const std::string& text);

/// The bytes of a text.
Bytes bytesOf(const std::string& text);

/// The name of a number; the number itself where it has none.
std::string nameOrNumber(std::string_view name, std::uint32_t number);

/// "0x0200": at least @p digits hexadecimal digits.
std::string hexNumber(std::uint32_t value, int digits);

/// Two hexadecimal digits for each byte, nothing between.
std::string hexText(BytesView bytes);

/// Lines of 16 bytes: where they begin, in hexadecimal, as characters. Each line begins with @p indent and ends with a
/// line feed.
std::string hexDump(BytesView bytes, const std::string& indent);

/// @p text with control characters written as `\n`, `\r` or `\xNN`, so that it says nothing to the terminal.
std::string printable(const std::string& text);

/// "2025-11-21T09:18:01.123456Z", as in the log.
std::string timeText(host::Nanoseconds wall);
/// "2025-11-21T09:18:01Z"; "-" for 0, which stands for never.
std::string shortTimeText(host::Nanoseconds wall);

} // namespace dorn::tool
