// SPDX-License-Identifier: MIT
// What the documents say of the command is held against the command.
#include "DornCommand.hpp"

#include "InFolder.hpp"
#include "Nouns.hpp"
#include "Program.hpp"
#include "ShownCommands.hpp"
#include "TestNode.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <sstream>
#include <wordexp.h>

namespace dorn::tool {
namespace {

namespace fs = std::filesystem;

/// From "dorn" to where the shell's own business begins; empty when there is no such command.
std::string commandIn(const std::string& typed)
{
    static const std::regex command(R"((^|[ (]|\./)dorn( [^|;&()<>]*)?(?=[|;&()<>]|$))");
    std::smatch found;
    return std::regex_search(typed, found, command) ? "dorn" + found[2].str() : "";
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

/// A page of the documents.
struct Page {
    explicit Page(const fs::path& path) : name(path.filename().string())
    {
        std::ifstream file(path);
        text.assign(std::istreambuf_iterator<char>(file), {});
        for (const ShownCommand& shown : shownCommands(text)) {
            if (const std::string command = commandIn(shown.typed); !command.empty()) {
                commands.push_back({command, shown.output});
            }
        }
    }

    /// Whether it is one of those that are about the command and nothing else.
    bool isAboutCommand() const { return name == "dorn-command.md" || name == "raml-command.md"; }

    std::string name;
    std::string text;
    std::vector<ShownCommand> commands;
};

class DornCommandDocumentTest : public ::testing::Test {
protected:
    DornCommandDocumentTest()
    {
        addNouns(m_program);
        m_pages.emplace_back(DORN_README);
        for (const fs::directory_entry& entry : fs::directory_iterator(DORN_DOCUMENTS)) {
            if (entry.path().extension() == ".md") {
                m_pages.emplace_back(entry.path());
            }
        }
    }

    Program m_program;
    std::vector<Page> m_pages;
};

/// What a package brings is on some machines and not on others.
bool namesInstalledFile(const std::string& command)
{
    return command.find(" /usr/") != std::string::npos;
}

/// On an empty node a command does nothing; it only tells whether it has been understood.
TEST_F(DornCommandDocumentTest, EveryCommandLineIsUnderstood)
{
    unsigned count = 0;
    for (const Page& page : m_pages) {
        for (const ShownCommand& command : page.commands) {
            if (namesInstalledFile(command.typed)) {
                continue;
            }
            const testkit::TestNode empty;
            const InFolder inside(empty.boardRoot()); // where what a command makes goes with the node

            const CommandResult result = dorn(argumentsOf(command.typed));

            EXPECT_NE(result.status, 2) << page.name << ": " << command.typed << "\n" << result.remarks;
            ++count;
        }
    }
    EXPECT_GE(count, 120U);
}

/// In the running text only a beginning may be shown: `dorn tag get NAME`.
TEST_F(DornCommandDocumentTest, EveryCommandInTheTextIsThere)
{
    static const std::regex span("`dorn( [^`]*)?`");
    unsigned count = 0;
    for (const Page& page : m_pages) {
        for (std::sregex_iterator found(page.text.begin(), page.text.end(), span), end; found != end; ++found) {
            const CLI::App* command = &m_program.commandLine();
            std::istringstream rest((*found)[1].str());
            for (std::string word; hasVerbs(*command) && rest >> word && std::islower(word.front()) != 0;) {
                command = subcommand(*command, word);
                ASSERT_NE(command, nullptr) << page.name << ": " << found->str() << ": there is no '" << word << "'";
            }
            ++count;
        }
    }
    EXPECT_GE(count, 90U);
}

TEST_F(DornCommandDocumentTest, EveryVerbIsShown)
{
    for (const std::string& verb : verbsBelow(m_program.commandLine())) {
        const auto shows = [&verb](const ShownCommand& command) {
            return (command.typed + " ").starts_with(verb + " ") && command.typed.find("--help") == std::string::npos;
        };

        EXPECT_TRUE(std::ranges::any_of(
            m_pages,
            [&shows](const Page& page) { return page.isAboutCommand() && std::ranges::any_of(page.commands, shows); }))
            << "no example of '" << verb << "'";
    }
}

TEST_F(DornCommandDocumentTest, QuotedHelpIsWhatIsPrinted)
{
    unsigned count = 0;
    for (const Page& page : m_pages) {
        for (const ShownCommand& command : page.commands) {
            if (command.typed.ends_with(" --help")) {
                EXPECT_EQ(command.output, dorn(argumentsOf(command.typed)).answer)
                    << page.name << ": " << command.typed;
                ++count;
            }
        }
    }
    EXPECT_GT(count, 0U);
}

} // namespace
} // namespace dorn::tool
