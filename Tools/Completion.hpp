// SPDX-License-Identifier: MIT
/// @file Completion.hpp
/// Completion of the command line in a shell, from the same definitions that the command line is read by.
#pragma once

#include <string>

namespace dorn::tool {

class Program;

/// A script that `bash` sources. It completes nouns, verbs and options, and asks `dorn` for the names of services,
/// parameters and tags.
std::string bashCompletion(const Program& program);

/// A script that `zsh` sources: the same for its own completion of bash's kind.
std::string zshCompletion(const Program& program);

/// The file `_dorn` in a folder of `fpath`, which `zsh` loads by itself: the same again.
std::string zshCompletionFunction(const Program& program);

} // namespace dorn::tool
