// SPDX-License-Identifier: MIT
/// @file StateNote.hpp
/// State that a reset of the board may change: a value, and when in the board's life it was noted.
#pragma once

#include "state/StateFile.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace dorn::board {

/// Two lines of a state file.
struct StateNote {
    std::uint32_t resets = 0; ///< how often the board had been reset
    std::string value;        ///< one line
};

/// The note in a file; nothing when there is none, or none that can be understood. @throws BoardFailure when the file
/// cannot be read.
std::optional<StateNote> readNote(const StateFile& file);

/// Replaces the note in a file. The caller holds the file's lock. @throws BoardFailure
void writeNote(const StateFile& file, const StateNote& note);

} // namespace dorn::board
