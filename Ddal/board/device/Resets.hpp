// SPDX-License-Identifier: MIT
/// @file Resets.hpp
/// Resets of the board.
#pragma once

#include "port/Clock.hpp"

#include <cstdint>
#include <optional>

namespace dorn::board {

/// How often the board has been reset since its state was empty. @throws BoardFailure
std::uint32_t resetCount();

/// When that was last, on the wall clock; nothing when it never was. @throws BoardFailure
std::optional<host::Nanoseconds> lastReset();

/// Counts a reset, which is all that it changes in the board's files: what they say holds for a number of resets.
/// @throws BoardFailure
void countReset();

/// Resets the board: counts it, and kills every process of the node, this one last. @throws BoardFailure when it
/// could not be counted: nobody is killed then.
[[noreturn]] void resetBoard();

} // namespace dorn::board
