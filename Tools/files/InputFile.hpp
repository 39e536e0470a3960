// SPDX-License-Identifier: MIT
/// @file InputFile.hpp
/// Files and pipes that a command reads.
#pragma once

#include "Console.hpp"

#include <cstdint>
#include <string>

namespace dorn::tool {

/// What stands for standard input among file names.
constexpr const char* standardInputName = "-";

/// How messages call a file: its name, "standard input" for "-".
std::string shownName(const std::string& file);

/// Reads a whole file, or standard input to its end, and shows progress.
/// @param limit most bytes that are taken, so that a pipe without an end does no harm
/// @throws Failure when it cannot be read or is greater.
std::string readInput(const std::string& file, std::uint64_t limit, Console& console);

} // namespace dorn::tool
