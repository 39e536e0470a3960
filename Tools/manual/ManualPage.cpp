// SPDX-License-Identifier: MIT
#include "manual/ManualPage.hpp"

#include "HelpFormatter.hpp"
#include "Program.hpp"
#include "manual/Roff.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string_view>

namespace dorn::tool {
namespace {

using Commands = std::vector<const CLI::App*>;

/// "dorn-rad"
std::string pageName(const CLI::App& command)
{
    std::string name = commandOf(command);
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

Commands subcommandsOf(const CLI::App& command)
{
    return command.get_subcommands([](const CLI::App*) { return true; });
}

std::string usageOf(const CLI::App& command)
{
    const std::string begin = "Usage: ";
    std::string usage = HelpFormatter().make_usage(&command, commandOf(command));
    usage.erase(usage.find_last_not_of('\n') + 1);
    return usage.substr(begin.size());
}

std::string head(const Program& program, const CLI::App& command)
{
    return pageHead(pageName(command), program.commandLine().version(), command.get_description());
}

std::string optionItems(const CLI::App& command)
{
    const HelpFormatter formatter;
    std::string text;
    for (const bool isArgument : {true, false}) {
        for (const CLI::Option* const option : command.get_options()) {
            const bool isHelp = option == command.get_help_ptr(); // every verb has it
            if (option->get_positional() == isArgument && !isHelp) {
                text += item(bold(formatter.make_option_name(option, isArgument)) +
                                 plain(formatter.make_option_opts(option)),
                             formatter.make_option_desc(option));
            }
        }
    }
    return text;
}

constexpr std::string_view paragraph = ".PP\n";

/// What stands at the end of the help: "Example:" and the lines below it, as they would be typed.
std::string footerOf(const CLI::App& command)
{
    std::istringstream lines(command.get_footer());
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == 0) {
            text += std::string(paragraph) + plain(line) + "\n";
        } else if (begin != std::string::npos) {
            text += std::string(paragraph) + ".RS 4\n.nf\n" + plain(line.substr(begin)) + "\n.fi\n.RE\n";
        }
    }
    return text;
}

std::string verbText(const CLI::App& verb)
{
    return ".SS " + plain(usageOf(verb)) + "\n" + plain(verb.get_description()) + "\n" + optionItems(verb) +
           footerOf(verb);
}

std::string verbTexts(const CLI::App& noun)
{
    std::string text;
    for (const CLI::App* const verb : subcommandsOf(noun)) {
        text += subcommandsOf(*verb).empty() ? verbText(*verb) : verbTexts(*verb);
    }
    return text;
}

ManualPage pageOf(const Program& program, const CLI::App& noun)
{
    std::string text = head(program, noun) + ".SH SYNOPSIS\n" + bold(usageOf(noun)) + "\n";
    if (subcommandsOf(noun).empty()) {
        text += ".SH DESCRIPTION\n" + plain(noun.get_description()) + "\n" + optionItems(noun) + footerOf(noun);
    } else {
        text += ".SH VERBS\n" + verbTexts(noun);
    }
    return {pageName(noun), text + ".SH SEE ALSO\n.BR dorn (1)\n"};
}

ManualPage pageOfCommand(const Program& program)
{
    const CLI::App& command = program.commandLine();
    std::string text = head(program, command) + ".SH SYNOPSIS\n" + bold(usageOf(command)) + "\n.SH NOUNS\n";
    std::string others;
    for (const CLI::App* const noun : subcommandsOf(command)) {
        text += item(bold(noun->get_name()), noun->get_description());
        others += (others.empty() ? ".BR " : " ,\n.BR ") + plain(pageName(*noun)) + " (1)";
    }
    text += ".SH OPTIONS\n" + optionItems(command);
    text += ".SH NOTES\n" + footerOf(command).substr(paragraph.size()); // a section begins with one by itself
    return {pageName(command), text + ".SH SEE ALSO\n" + others + "\n"};
}

} // namespace

std::vector<ManualPage> manualPages(const Program& program)
{
    std::vector<ManualPage> pages{pageOfCommand(program)};
    for (const CLI::App* const noun : subcommandsOf(program.commandLine())) {
        pages.push_back(pageOf(program, *noun));
    }
    return pages;
}

} // namespace dorn::tool
