// SPDX-License-Identifier: MIT
/// @file HelpFormatter.hpp
/// How help looks.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace dorn::tool {

/// Speaks of nouns, verbs and arguments, and names what an option takes in one word.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_usage(const CLI::App* command, std::string name) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
};

} // namespace dorn::tool
