// SPDX-License-Identifier: MIT
/// @file ShownCommands.hpp
/// The commands that a page of the documents shows.
#pragma once

#include <string>
#include <vector>

namespace dorn::tool {

/// What is typed behind a prompt, and what the page shows below it.
struct ShownCommand {
    std::string typed;
    std::string output; ///< each line with its line feed
};

/// Reads the code blocks of a page: those behind four blanks. A command begins with "$ ".
std::vector<ShownCommand> shownCommands(const std::string& page);

} // namespace dorn::tool
