// SPDX-License-Identifier: MIT
/// @file BoardText.hpp
/// A board as people and programs see it.
#pragma once

#include "Console.hpp"
#include "answers/BoardView.hpp"
#include "text/Json.hpp"

#include <string>

namespace dorn::tool {

/// A few lines and a table for each kind of thing that the board has.
std::string boardText(const BoardView& board, const Console& console);
/// The same with every number as a number; what the board does not have is null or an empty list.
Json boardJson(const BoardView& board);

/// "primary"; the number of a location that has no name.
std::string startLocationText(std::int32_t location);
/// "read-only"; the number of a mode that has no name.
std::string mountModeText(std::uint32_t mode);

} // namespace dorn::tool
