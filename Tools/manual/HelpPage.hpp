// SPDX-License-Identifier: MIT
/// @file HelpPage.hpp
/// The manual of a program that has no nouns, from the text of its help.
#pragma once

#include "manual/ManualPage.hpp"

namespace dorn::tool {

/// The page of a program.
/// @param name "dorn-conformance"
/// @param help what `--help` prints: a line "Usage: ..."; what the program does, its first sentence on a line of its
/// own;
///   a list of options, indented, each with at least two blanks or a new line in front of what it does; "Example: ...";
///   "Exit status: ..."
/// @param version with the name of what it belongs to: "dorn 0.1.0"
ManualPage helpPage(const std::string& name, const std::string& help, const std::string& version);

} // namespace dorn::tool
