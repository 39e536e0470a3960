// SPDX-License-Identifier: MIT
/// @file LogText.hpp
/// The pieces of a line's text form (LogLine.hpp): time, names, text.
#pragma once

#include "port/Clock.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace dorn::host {

/// Length of "2025-11-21T09:18:01.123456Z".
constexpr std::size_t logTimeLength = 27;

/// Writes the logTimeLength characters of a time. Remembers the second for the next call in the thread.
/// @return the character after them.
char* writeLogTime(char* to, Nanoseconds wall) noexcept;
std::optional<Nanoseconds> parseLogTime(std::string_view text) noexcept;

/// Writes a name as one field of at most @p room characters, "-" for an empty one; what does not fit is left out.
/// @return the character after the field.
char* writeLogName(char* to, std::size_t room, std::string_view name) noexcept;
std::string parseLogName(std::string_view field);

/// Length of a text's one-line form; the text's own length when it is in that form already.
std::size_t oneLineLength(std::string_view text) noexcept;
/// Writes a text's one-line form. @return the character after it.
char* writeOneLine(char* to, std::string_view text) noexcept;

} // namespace dorn::host
