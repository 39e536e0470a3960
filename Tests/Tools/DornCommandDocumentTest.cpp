// SPDX-License-Identifier: MIT
// The page about the command is held against the command.
#include "DornCommand.hpp"

#include "Nouns.hpp"
#include "Program.hpp"
#include "TestNode.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <wordexp.h>

namespace dorn::tool {
namespace {

/// A command line behind a prompt, and what the page shows below it.
struct ShownCommand {
    std::string line; ///< from "dorn" on, without what the shell does around it
    std::string output;
};

/// From "dorn" to where the shell's own business begins.
std::string commandIn(const std::string& prompted)
{
    static const std::regex command(R"((^|[ (])dorn( [^|;()<>]*)?)");
    std::smatch found;
    if (!std::regex_search(prompted, found, command)) {
        return "";
    }
    return "dorn" + found[2].str();
}

/// Reads the code blocks of the page: those behind four blanks.
std::vector<ShownCommand> readCommands(std::istream& page)
{
    const std::string indent = "    ";
    const std::string prompt = indent + "$ ";
    std::vector<ShownCommand> commands;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with(prompt)) {
            commands.push_back({commandIn(line.substr(prompt.size())), ""});
            isInside = true;
        } else if (isInside && (line.starts_with(indent) || line.empty())) {
            commands.back().output += (line.empty() ? line : line.substr(indent.size())) + "\n";
        } else {
            isInside = false;
        }
    }
    for (ShownCommand& command : commands) {
        while (command.output.ends_with("\n\n") || command.output == "\n") { // the empty line behind the block
            command.output.pop_back();
        }
    }
    return commands;
}

/// The words as the shell would split them, without the first.
std::vector<std::string> argumentsOf(const std::string& line)
{
    wordexp_t words{};
    if (wordexp(line.c_str(), &words, WRDE_NOCMD) != 0 || words.we_wordc == 0) {
        ADD_FAILURE() << "the shell does not understand: " << line;
        return {};
    }
    std::vector<std::string> arguments(words.we_wordv + 1, words.we_wordv + words.we_wordc);
    wordfree(&words);
    return arguments;
}

std::vector<const CLI::App*> subcommandsOf(const CLI::App& command)
{
    return command.get_subcommands([](const CLI::App*) { return true; });
}

bool hasVerbs(const CLI::App& command)
{
    return !subcommandsOf(command).empty();
}

/// @return null when there is none of this name.
const CLI::App* subcommand(const CLI::App& command, const std::string& name)
{
    const auto all = subcommandsOf(command);
    const auto found =
        std::find_if(all.begin(), all.end(), [&name](const CLI::App* one) { return one->get_name() == name; });
    return found == all.end() ? nullptr : *found;
}

/// The commands of all verbs: "dorn rad set".
std::vector<std::string> verbsBelow(const CLI::App& command)
{
    std::vector<std::string> verbs;
    if (!hasVerbs(command)) {
        verbs.push_back(commandOf(command));
    }
    for (const CLI::App* const verb : subcommandsOf(command)) {
        const std::vector<std::string> below = verbsBelow(*verb);
        verbs.insert(verbs.end(), below.begin(), below.end());
    }
    return verbs;
}

class DornCommandDocumentTest : public ::testing::Test {
protected:
    DornCommandDocumentTest()
    {
        addNouns(m_program);
        std::ifstream page(DORN_COMMAND_DOCUMENT);
        m_commands = readCommands(page);
        page.clear();
        page.seekg(0);
        m_text = {std::istreambuf_iterator<char>(page), {}};
    }

    Program m_program;
    std::string m_text;
    std::vector<ShownCommand> m_commands;
};

/// On an empty node a command does nothing; it only tells whether it has been understood.
TEST_F(DornCommandDocumentTest, EveryCommandLineIsUnderstood)
{
    EXPECT_GE(m_commands.size(), 14U);
    for (const ShownCommand& command : m_commands) {
        ASSERT_NE(command.line, "");
        const testkit::TestNode empty;

        const CommandResult result = dorn(argumentsOf(command.line));

        EXPECT_NE(result.status, 2) << command.line << "\n" << result.remarks;
    }
}

/// In the running text only a beginning may be shown: `dorn tag get NAME`.
TEST_F(DornCommandDocumentTest, EveryCommandInTheTextIsThere)
{
    static const std::regex span("`dorn( [^`]*)?`");
    unsigned count = 0;
    for (std::sregex_iterator found(m_text.begin(), m_text.end(), span); found != std::sregex_iterator(); ++found) {
        const CLI::App* command = &m_program.commandLine();
        std::istringstream rest((*found)[1].str());
        for (std::string word; hasVerbs(*command) && rest >> word && std::islower(word.front()) != 0;) {
            command = subcommand(*command, word);
            ASSERT_NE(command, nullptr) << found->str() << ": there is no '" << word << "'";
        }
        ++count;
    }
    EXPECT_GT(count, 3U);
}

TEST_F(DornCommandDocumentTest, EveryVerbIsShown)
{
    for (const std::string& verb : verbsBelow(m_program.commandLine())) {
        const bool isShown = std::any_of(m_commands.begin(), m_commands.end(), [&verb](const ShownCommand& command) {
            return (command.line + " ").starts_with(verb + " ") && command.line.find("--help") == std::string::npos;
        });

        EXPECT_TRUE(isShown) << "no example of '" << verb << "'";
    }
}

TEST_F(DornCommandDocumentTest, QuotedHelpIsWhatIsPrinted)
{
    unsigned count = 0;
    for (const ShownCommand& command : m_commands) {
        if (command.line.ends_with(" --help")) {
            EXPECT_EQ(command.output, dorn(argumentsOf(command.line)).answer) << command.line;
            ++count;
        }
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace dorn::tool
