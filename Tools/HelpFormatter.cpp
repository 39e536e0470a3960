// SPDX-License-Identifier: MIT
#include "HelpFormatter.hpp"

#include "Program.hpp"

namespace dorn::tool {

HelpFormatter::HelpFormatter()
{
    constexpr std::size_t descriptionColumn = 26;
    label("Positionals", "Arguments");
    column_width(descriptionColumn);
}

std::string HelpFormatter::make_usage(const CLI::App* command, std::string name) const
{
    std::string usage = "Usage: " + name;
    const auto isVerbOrNoun = [](const CLI::App*) { return true; };
    if (!command->get_subcommands(isVerbOrNoun).empty()) {
        usage += command->get_parent() ? " VERB" : " NOUN VERB";
    }
    for (const CLI::Option* const argument : command->get_options()) {
        if (argument->get_positional()) {
            usage += " " + make_option_usage(argument);
        }
    }
    return usage + " [options]\n";
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const
{
    const bool isNamed = !option->get_positional() && !isFlag(*option);
    return isNamed ? " " + option->get_type_name() : "";
}

} // namespace dorn::tool
