// SPDX-License-Identifier: MIT
#include "WrongUse.hpp"

#include "Program.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <vector>

namespace dorn::tool {
namespace {

std::string quoted(const std::string& text)
{
    return "'" + text + "'";
}

/// "get, list, set, watch"
std::string subcommandsOf(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::App* const subcommand : command.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(subcommand->get_name());
    }
    std::sort(names.begin(), names.end());
    return CLI::detail::join(names, ", ");
}

bool hasSubcommands(const CLI::App& command)
{
    return !command.get_subcommands([](const CLI::App*) { return true; }).empty();
}

std::string unexpected(const CLI::App& command)
{
    const std::vector<std::string> extras = command.remaining(true);
    const auto option =
        std::find_if(extras.begin(), extras.end(), [](const std::string& extra) { return extra.starts_with('-'); });
    if (option != extras.end()) {
        return "unknown option " + quoted(*option) + " of " + quoted(commandOf(command));
    }
    const std::string extra = extras.empty() ? "" : extras.front();
    if (!hasSubcommands(command)) {
        return quoted(commandOf(command)) + " does not take the argument " + quoted(extra);
    }
    return "unknown " + std::string(command.get_parent() ? "verb " : "noun ") + quoted(extra) + "; there are " +
           subcommandsOf(command);
}

std::string missing(const CLI::App& command)
{
    if (hasSubcommands(command)) {
        return quoted(commandOf(command)) + " needs a " + (command.get_parent() ? "verb: " : "noun: ") +
               subcommandsOf(command);
    }
    for (const CLI::Option* const option : command.get_options()) {
        if (option->get_required() && option->count() == 0) {
            return quoted(commandOf(command)) + " needs " + option->get_name();
        }
    }
    return {};
}

/// Which option has too many values or too few.
std::string mismatch(const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find_first_of(": "));
    if (text.find("flag override") != std::string::npos) {
        return "option " + quoted("--" + name) + " takes no value";
    }
    const bool isRepeated = text.find("At Most") != std::string::npos;
    return isRepeated ? quoted(name) + " is given more than once" : "option " + quoted(name) + " needs a value";
}

std::string pair(const CLI::ParseError& error, const std::string& between, const std::string& words,
                 const std::string& end)
{
    const std::string text = error.what();
    const std::size_t at = text.find(between);
    if (at == std::string::npos) {
        return text;
    }
    return quoted(text.substr(0, at)) + words + quoted(text.substr(at + between.size())) + end;
}

} // namespace

std::string reasonOf(const CLI::App& command, const CLI::ParseError& error)
{
    if (dynamic_cast<const CLI::ExtrasError*>(&error)) {
        return unexpected(command);
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error)) {
        // A word in a noun's or verb's place is not missing but wrong.
        return command.remaining().empty() ? missing(command) : unexpected(command);
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        return mismatch(error);
    }
    if (dynamic_cast<const CLI::ExcludesError*>(&error)) {
        return pair(error, " excludes ", " and ", " do not go together");
    }
    if (dynamic_cast<const CLI::RequiresError*>(&error)) {
        return pair(error, " requires ", " needs ", "");
    }
    return error.what();
}

} // namespace dorn::tool
