// SPDX-License-Identifier: MIT
/// @file ManualPage.hpp
/// The manual of the command, from the same texts as its help.
#pragma once

#include <string>
#include <vector>

namespace dorn::tool {

class Program;

/// A page for `man`.
struct ManualPage {
    std::string name; ///< "dorn-rad"
    std::string text; ///< in the language of man(7)
};

/// The page of the command and one for each of its nouns.
std::vector<ManualPage> manualPages(const Program& program);

} // namespace dorn::tool
