// SPDX-License-Identifier: MIT
#include "Program.hpp"

#include "HelpFormatter.hpp"
#include "WrongUse.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <string_view>
#include <utility>

namespace dorn::tool {
namespace {

constexpr const char* generalFooter =
    "Exit status: 0 fine, 1 the answer is no, 2 wrong use.\n"
    "DORN_RUN_DIR and DORN_NID choose the node.\n\n"
    "'dorn NOUN --help' lists a noun's verbs, 'dorn NOUN VERB --help' shows an example.";

/// `--json=5` means nothing.
void refuseFlagValues(CLI::App& command)
{
    const auto all = [](const CLI::Option*) { return true; };
    for (CLI::Option* const option : command.get_options(all)) {
        if (isFlag(*option)) {
            option->disable_flag_override();
        }
    }
    for (CLI::App* const subcommand : command.get_subcommands([](CLI::App*) { return true; })) {
        refuseFlagValues(*subcommand);
    }
}

/// The text without empty lines at its end.
std::string trimmed(std::string text)
{
    while (text.ends_with("\n\n")) {
        text.pop_back();
    }
    return text;
}

/// What goes wrong is said once, in this command's own words. What is wrong with a document comes from the lines that
/// its parser prints: they are kept, whatever the environment wants to be kept.
void keepLogForVerb()
{
    setenv("DORN_LOG", "none", 0);
    const char* const level = std::getenv("DORN_LOG_LEVEL");
    if (level && (std::string_view(level) == "none" || std::string_view(level) == "6")) {
        unsetenv("DORN_LOG_LEVEL");
    }
}

} // namespace

Program::Program() : m_commandLine(std::make_unique<CLI::App>("Shows and changes what runs on a node", "dorn"))
{
    m_commandLine->formatter(std::make_shared<HelpFormatter>());
    m_commandLine->set_help_flag("-h,--help", "Shows this help");
    m_commandLine->set_version_flag("--version", "dorn " DORN_VERSION, "Shows the version");
    m_commandLine->require_subcommand(1);
    m_commandLine->footer(generalFooter);
}

Program::~Program() = default;

CLI::App& Program::addNoun(const std::string& name, const std::string& description)
{
    CLI::App& noun = *m_commandLine->add_subcommand(name, description);
    noun.group("Nouns")->require_subcommand(1)->footer("");
    return noun;
}

CLI::App& Program::addPart(CLI::App& noun, const std::string& name, const std::string& description)
{
    CLI::App& part = *noun.add_subcommand(name, description);
    part.group("Parts, with verbs of their own")->require_subcommand(1)->footer("");
    return part;
}

CLI::App& Program::addVerb(CLI::App& noun, const VerbText& text, Action action)
{
    CLI::App& verb = *noun.add_subcommand(text.name, text.description);
    verb.group("Verbs")->footer("Example:\n  " + text.example);
    m_verbs[&verb] = {std::move(action), text.values, text.files, text.isService};
    return verb;
}

void Program::setVerbOfBareNoun(CLI::App& noun, const CLI::App& verb)
{
    noun.require_subcommand(0, 1)->footer("Without a verb it does what '" + commandOf(verb) + "' does.");
    m_verbs[&noun] = m_verbs.at(&verb);
}

CLI::App& Program::addCommand(const VerbText& text, Action action)
{
    CLI::App& command = addVerb(*m_commandLine, text, std::move(action));
    command.group("Nouns");
    return command;
}

const std::string& Program::valuesOf(const CLI::App& verb) const
{
    static const std::string none;
    const auto found = m_verbs.find(&verb);
    return found == m_verbs.end() ? none : found->second.values;
}

unsigned Program::filesOf(const CLI::App& verb) const
{
    const auto found = m_verbs.find(&verb);
    return found == m_verbs.end() ? 0 : found->second.files;
}

Outcome Program::run(const std::vector<std::string>& arguments, Console& console)
{
    std::vector<const char*> argv{"dorn"};
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(argv),
                   [](const std::string& argument) { return argument.c_str(); });
    refuseFlagValues(*m_commandLine);
    Outcome outcome = Outcome::Fine;
    try {
        m_commandLine->parse(static_cast<int>(argv.size()), argv.data());
        outcome = carryOut(console);
    } catch (const CLI::CallForHelp&) {
        console.print(trimmed(m_commandLine->help()));
    } catch (const CLI::CallForVersion&) {
        console.print(m_commandLine->version() + "\n");
    } catch (const CLI::ParseError& error) {
        explainWrongUse(reasonOf(chosen(), error), console);
        outcome = Outcome::WrongUse;
    }
    return console.finish() ? outcome : Outcome::No;
}

Outcome Program::carryOut(Console& console) const
{
    const Verb& verb = m_verbs.at(&chosen());
    if (!verb.isService) {
        keepLogForVerb();
    }
    try {
        return verb.action(console);
    } catch (const UsageError& error) {
        explainWrongUse(error.what(), console);
        return Outcome::WrongUse;
    } catch (const std::exception& error) {
        console.remark(error.what());
        return Outcome::No;
    }
}

void Program::explainWrongUse(const std::string& reason, Console& console) const
{
    console.remark(reason + "\nTry '" + commandOf(chosen()) + " --help'");
}

const CLI::App& Program::chosen() const
{
    const CLI::App* command = m_commandLine.get();
    for (auto next = command->get_subcommands(); !next.empty(); next = command->get_subcommands()) {
        command = next.front();
    }
    return *command;
}

bool isFlag(const CLI::Option& option)
{
    return option.get_items_expected_max() == 0;
}

std::string commandOf(const CLI::App& command)
{
    const CLI::App* const parent = command.get_parent();
    return (parent ? commandOf(*parent) + " " : "") + command.get_name();
}

} // namespace dorn::tool
