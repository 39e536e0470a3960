// SPDX-License-Identifier: MIT
#include "Program.hpp"

#include "InFolder.hpp"
#include "Nouns.hpp"
#include "TestConsole.hpp"
#include "TestNode.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>

namespace dorn::tool {
namespace {

using ::testing::HasSubstr;

std::vector<std::string> wordsOf(const std::string& line)
{
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

/// Runs a command line that begins with "dorn" in this process.
class ProgramTest : public ::testing::Test {
protected:
    ProgramTest() { addNouns(m_program); }

    Outcome run(const std::string& line)
    {
        std::vector<std::string> words = wordsOf(line);
        words.erase(words.begin());
        return m_program.run(words, m_console);
    }

    testkit::TestNode m_node;
    Program m_program;
    TestConsole m_console;
};

TEST_F(ProgramTest, VersionIsPrinted)
{
    EXPECT_EQ(run("dorn --version"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(), "dorn " DORN_EXPECTED_VERSION "\n");
}

TEST_F(ProgramTest, HelpNamesEveryNoun)
{
    EXPECT_EQ(run("dorn --help"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(),
              "Shows and changes what runs on a node\n"
              "Usage: dorn NOUN VERB [options]\n"
              "\n"
              "Options:\n"
              "  -h,--help               Shows this help\n"
              "  --version               Shows the version\n"
              "\n"
              "Nouns:\n"
              "  service                 The services of the node\n"
              "  rad                     The R&D parameters of the node\n"
              "  tag                     The configuration tags of the node\n"
              "  msg                     The messages of the node\n"
              "  log                     The log of the node: the latest lines of all its processes by time\n"
              "  alarm                   The alarms of the node\n"
              "  redundancy              The unit's part in a redundant pair\n"
              "  gateway                 The node's gateway to the other nodes\n"
              "  board                   The hardware of the board, and what happens to it\n"
              "  raml                    RAML configuration documents, in files or pipes\n"
              "  image                   Firmware images: a payload with a trailer\n"
              "  rpram                   The reset-persistent fields: what survives a reset of the unit\n"
              "  srio                    The memory of the devices behind RapidIO\n"
              "  post                    The results of power-on self-tests\n"
              "  snapshot                Gathers all that is known of the node in one archive\n"
              "  new                     Begins something of your own\n"
              "  completion              Completion of this command in a shell\n"
              "\n"
              "Exit status: 0 fine, 1 the answer is no, 2 wrong use.\n"
              "DORN_RUN_DIR and DORN_NID choose the node.\n"
              "\n"
              "'dorn NOUN --help' lists a noun's verbs, 'dorn NOUN VERB --help' shows an example.\n");
}

TEST_F(ProgramTest, HelpOfANounNamesItsVerbs)
{
    EXPECT_EQ(run("dorn completion --help"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(), "Completion of this command in a shell\n"
                                  "Usage: dorn completion VERB [options]\n"
                                  "\n"
                                  "Options:\n"
                                  "  -h,--help               Shows this help\n"
                                  "\n"
                                  "Verbs:\n"
                                  "  bash                    Prints the script for bash\n"
                                  "  zsh                     Prints the script for zsh\n");
}

TEST_F(ProgramTest, HelpOfAPartNamesItsVerbs)
{
    EXPECT_EQ(run("dorn board sfp --help"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(),
              "The SFP cages and their modules\n"
              "Usage: dorn board sfp VERB [options]\n"
              "\n"
              "Options:\n"
              "  -h,--help               Shows this help\n"
              "\n"
              "Verbs:\n"
              "  show                    Shows the cages, and what the SFP service has been told of them\n"
              "  plug                    Plugs a module into a cage\n"
              "  pull                    Pulls the module out of a cage\n");
}

TEST_F(ProgramTest, HelpOfANounNamesItsParts)
{
    EXPECT_EQ(run("dorn board --help"), Outcome::Fine);
    EXPECT_THAT(m_console.answer(),
                HasSubstr("Parts, with verbs of their own:\n"
                          "  rio                     The RapidIO devices and what goes wrong with them\n"
                          "  sfp                     The SFP cages and their modules\n"
                          "  link                    The baseband links and their fibres\n"
                          "  clock                   The clock reference, the oscillator and what follows them\n"));
}

TEST_F(ProgramTest, HelpOfAVerbShowsArgumentsOptionsAndExample)
{
    EXPECT_EQ(run("dorn rad watch --help"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(),
              "Prints R&D parameters as they change, until Ctrl-C\n"
              "Usage: dorn rad watch [PARAMETER...] [options]\n"
              "\n"
              "Arguments:\n"
              "  PARAMETER               The parameters to watch; all without one\n"
              "\n"
              "Options:\n"
              "  -h,--help               Shows this help\n"
              "  --count N               Ends after so many\n"
              "  --timeout S             Ends after so many seconds; status 1 if --count is not reached\n"
              "  --hex                   Values in hexadecimal\n"
              "  --json                  Prints a JSON object a line\n"
              "\n"
              "Example:\n"
              "  dorn rad watch HWAState/LedState --count 1 --timeout 10\n");
}

struct WrongUseCase {
    const char* line;
    const char* remark;

    friend std::ostream& operator<<(std::ostream& stream, const WrongUseCase& use) { return stream << use.line; }
};

class WrongUseTest : public ProgramTest, public ::testing::WithParamInterface<WrongUseCase> {};

TEST_P(WrongUseTest, IsExplainedAndStatus2)
{
    EXPECT_EQ(run(GetParam().line), Outcome::WrongUse);
    EXPECT_EQ(m_console.answer(), "");
    EXPECT_EQ(m_console.remarks(), GetParam().remark);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongUseTest,
    ::testing::Values(
        WrongUseCase{
            "dorn",
            "dorn: 'dorn' needs a noun: alarm, board, completion, gateway, image, log, msg, new, post, rad, raml, "
            "redundancy, rpram, service, snapshot, srio, tag\nTry 'dorn --help'\n"},
        WrongUseCase{"dorn foo", "dorn: unknown noun 'foo'; there are alarm, board, completion, gateway, image, log, "
                                 "msg, new, post, rad, raml, "
                                 "redundancy, rpram, service, snapshot, srio, tag\nTry 'dorn --help'\n"},
        WrongUseCase{"dorn --foo", "dorn: unknown option '--foo' of 'dorn'\nTry 'dorn --help'\n"},
        WrongUseCase{"dorn rad", "dorn: 'dorn rad' needs a verb: get, list, set, watch\nTry 'dorn rad --help'\n"},
        WrongUseCase{"dorn rad lst",
                     "dorn: unknown verb 'lst'; there are get, list, set, watch\nTry 'dorn rad --help'\n"},
        WrongUseCase{"dorn rad --foo", "dorn: unknown option '--foo' of 'dorn rad'\nTry 'dorn rad --help'\n"},
        WrongUseCase{"dorn rad list --foo",
                     "dorn: unknown option '--foo' of 'dorn rad list'\nTry 'dorn rad list --help'\n"},
        WrongUseCase{"dorn rad list A B",
                     "dorn: 'dorn rad list' does not take the argument 'B'\nTry 'dorn rad list --help'\n"},
        WrongUseCase{"dorn rad get", "dorn: 'dorn rad get' needs PARAMETER\nTry 'dorn rad get --help'\n"},
        WrongUseCase{"dorn rad set FIRM", "dorn: 'dorn rad set' needs VALUE\nTry 'dorn rad set --help'\n"},
        WrongUseCase{"dorn rad set FIRM on", "dorn: VALUE: 'on' is not a number (decimal, or hexadecimal behind 0x)\n"
                                             "Try 'dorn rad set --help'\n"},
        WrongUseCase{"dorn rad set FIRM 4294967296",
                     "dorn: VALUE: 4294967296 is too great; the greatest is 4294967295\nTry 'dorn rad set --help'\n"},
        WrongUseCase{"dorn rad watch --count", "dorn: option '--count' needs a value\nTry 'dorn rad watch --help'\n"},
        WrongUseCase{"dorn rad watch --count 1 --count 2",
                     "dorn: '--count' is given more than once\nTry 'dorn rad watch --help'\n"},
        WrongUseCase{"dorn rad watch --count few",
                     "dorn: --count: 'few' is not a number (decimal, or hexadecimal behind 0x)\n"
                     "Try 'dorn rad watch --help'\n"},
        WrongUseCase{"dorn rad list --json=5", "dorn: option '--json' takes no value\nTry 'dorn rad list --help'\n"},
        WrongUseCase{"dorn rad list --json --names",
                     "dorn: '--json' and '--names' do not go together\nTry 'dorn rad list --help'\n"},
        WrongUseCase{"dorn tag set a",
                     "dorn: 'dorn tag set' needs one of --u16, --u32, --string, --hex\nTry 'dorn tag set --help'\n"},
        WrongUseCase{"dorn tag set a --u16 1 --u32 2",
                     "dorn: '--u16' and '--u32' do not go together\nTry 'dorn tag set --help'\n"},
        WrongUseCase{"dorn tag set a --u16 65536",
                     "dorn: --u16: 65536 is too great; the greatest is 65535\nTry 'dorn tag set --help'\n"},
        WrongUseCase{"dorn tag set a --hex 1",
                     "dorn: --hex: '1' at position 1 is not a byte in two hexadecimal digits\n"
                     "Try 'dorn tag set --help'\n"},
        WrongUseCase{"dorn tag get a --as float",
                     "dorn: --as: 'float' is none of text, u16, u32, hex\nTry 'dorn tag get --help'\n"},
        WrongUseCase{"dorn msg send 1 --json", "dorn: '--json' needs '--wait-reply'\nTry 'dorn msg send --help'\n"},
        WrongUseCase{"dorn msg send 65536",
                     "dorn: CPID: 65536 is too great; the greatest is 65535\nTry 'dorn msg send --help'\n"},
        WrongUseCase{"dorn msg watch --cpid x",
                     "dorn: --cpid: 'x' is not a number (decimal, or hexadecimal behind 0x)\n"
                     "Try 'dorn msg watch --help'\n"},
        WrongUseCase{"dorn log --count 1", "dorn: '--count' needs '--follow'\nTry 'dorn log --help'\n"},
        WrongUseCase{"dorn log -n many", "dorn: --lines: 'many' is not a number (decimal, or hexadecimal behind 0x)\n"
                                         "Try 'dorn log --help'\n"},
        WrongUseCase{"dorn log --severity bad",
                     "dorn: --severity: 'bad' is none of debug, info, warning, error, vip\nTry 'dorn log --help'\n"}));

/// Every verb, with the command line that calls it.
std::vector<std::pair<std::string, const CLI::App*>> verbsBelow(const CLI::App& command)
{
    std::vector<std::pair<std::string, const CLI::App*>> verbs;
    const auto subcommands = command.get_subcommands([](const CLI::App*) { return true; });
    if (subcommands.empty()) {
        verbs.emplace_back(commandOf(command), &command);
    }
    for (const CLI::App* const subcommand : subcommands) {
        const auto below = verbsBelow(*subcommand);
        verbs.insert(verbs.end(), below.begin(), below.end());
    }
    return verbs;
}

TEST_F(ProgramTest, EveryVerbHasAnExampleThatIsUnderstood)
{
    const auto verbs = verbsBelow(m_program.commandLine());
    EXPECT_GE(verbs.size(), 14U);
    for (const auto& [line, verb] : verbs) {
        const std::string footer = verb->get_footer();
        ASSERT_TRUE(footer.starts_with("Example:\n  ")) << line;
        const std::string example = footer.substr(footer.find("  ") + 2);
        EXPECT_THAT(example, HasSubstr(line));
        if (example.starts_with("dorn ")) {
            const testkit::TestNode empty; // where a watch ends at once
            const InFolder inside(empty.boardRoot());
            const std::string command = example.substr(0, example.find(" > ")); // the rest is the shell's business
            EXPECT_NE(run(command), Outcome::WrongUse) << example << "\n" << m_console.remarks();
        }
    }
}

TEST_F(ProgramTest, VerbsThatOnlyReadMakeNothing)
{
    for (const std::string line :
         {"dorn service list", "dorn rad list", "dorn rad get FIRM", "dorn rad set FIRM 1", "dorn rad watch",
          "dorn tag list", "dorn tag get a", "dorn tag watch", "dorn msg send 1", "dorn msg watch", "dorn log",
          "dorn log -f", "dorn board sfp show", "dorn board link show", "dorn board clock show"}) {
        EXPECT_EQ(run(line), Outcome::No) << line;
        EXPECT_TRUE(std::filesystem::is_empty(m_node.runDirectory())) << line;
    }
    EXPECT_EQ(m_console.answer(), "");
}

TEST_F(ProgramTest, ValueThatLooksLikeAVerbIsAValue)
{
    EXPECT_EQ(run("dorn tag set list --string get"), Outcome::Fine);
    EXPECT_EQ(m_console.answer(), "list: none -> get (text)\n");
}

} // namespace
} // namespace dorn::tool
