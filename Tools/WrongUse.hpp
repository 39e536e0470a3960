// SPDX-License-Identifier: MIT
/// @file WrongUse.hpp
/// Why a command line cannot be understood, in the words of this command.
#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace dorn::tool {

/// @param command the command as far as it was understood, with what it did not take
std::string reasonOf(const CLI::App& command, const CLI::ParseError& error);

} // namespace dorn::tool
