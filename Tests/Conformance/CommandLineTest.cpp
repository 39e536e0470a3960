// SPDX-License-Identifier: MIT
// What a user of the suite meets on its command line.
#include "SuiteRun.hpp"

#include <filesystem>
#include <gmock/gmock.h>

namespace dorn::conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CommandLineTest : public SuiteTest {};

TEST_F(CommandLineTest, HelpNamesEveryOptionAndTheExitStatus)
{
    const SuiteRun run = runSuite(DORN_CONFORMANCE, {"--help"});

    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, StartsWith("Usage: "));
    for (const char* const option :
         {"--list", "--function NAME", "--destructive", "--bound SECONDS", "--directory PATH", "--end-signal NUMBER",
          "--tag-file PATH", "--collect COMMAND", "--rio PORT:DEVICE:ADDRESS", "--fpga ID", "--file-system NUMBER",
          "--boot-image PATH", "--fpga-image PATH", "--verbose", "--here", "--help"}) {
        EXPECT_THAT(run.output, HasSubstr(option));
    }
    EXPECT_THAT(
        run.output,
        EndsWith("Exit status: 0 no rule is broken, 1 a rule is broken, 2 wrong use, or no rule could be tried.\n"));
}

TEST_F(CommandLineTest, WrongUseIsTold)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> uses{
        {{"--nonsense"}, "there is no option '--nonsense'"},
        {{"--bound"}, "--bound wants SECONDS"},
        {{"--bound", "long"}, "'long' is not a number from 0 to 3600"},
        {{"--fpga", "-1"}, "'-1' is not a number from 0 to 4294967295"},
        {{"--rio", "0:1"}, "'0:1' is not PORT:DEVICE:ADDRESS"},
        {{"--rio", "0:70000:0"}, "'70000' is not a number from 0 to 65535"},
        {{"no.such-rule"}, "no rule is called so; --list prints them all"},
        {{"--function", "AaNothing"}, "no rule is called so; --list prints them all"},
        {{"--rule", "no.such-rule"}, "there is no rule 'no.such-rule'"},
        {{"--role", "nobody"}, "there is no role 'nobody'"},
    };
    for (const auto& [arguments, complaint] : uses) {
        const SuiteRun run = runSuite(DORN_CONFORMANCE, arguments);
        EXPECT_EQ(run.status, 2) << complaint;
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, HasSubstr(": " + complaint + "\nTry '"));
    }
}

TEST_F(CommandLineTest, RulesAreChosenByPatternAndFunction)
{
    EXPECT_THAT(runSuite(DORN_CONFORMANCE, {"cpu.*", "sem.null-is-refused"}).rules("kept"),
                ElementsAre("cpu.little-endian-word-is-converted", "cpu.null-is-passed-over", "sem.null-is-refused"));
    EXPECT_THAT(runSuite(DORN_CONFORMANCE, {"--function", "AaTimerCancel", "timer.c*"}).rules("kept"),
                ElementsAre("timer.cancelled-timeout-stays-away"));
}

TEST_F(CommandLineTest, ListHasIdHeaderFunctionsAndRule)
{
    const SuiteRun run = runSuite(DORN_CONFORMANCE, {"--list", "mutex.only-*"});

    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "mutex.only-the-holder-gives  [AaSem.h]  AaSemReMutexGive\n"
                          "    AaSemReMutexGive() by a thread that does not hold the mutex returns 1\n");
}

TEST_F(CommandLineTest, RuleIdsAreUniqueAndTellTheirSubject)
{
    const SuiteRun run = runSuite(DORN_CONFORMANCE, {"--list"});
    std::size_t lines = 0;
    for (const char character : run.output) {
        lines += character == '\n' ? 1 : 0;
    }

    EXPECT_EQ(lines, 2 * listedRules().size());
    for (const auto& [id, functions] : listedRules()) {
        EXPECT_THAT(id, ::testing::MatchesRegex("[a-z]+(\\.[a-z0-9-]+)+"));
        EXPECT_FALSE(functions.empty()) << id;
    }
}

TEST_F(CommandLineTest, RulesCanBeTriedInOneProcess)
{
    const SuiteRun run = runSuite(DORN_CONFORMANCE, {"--here", "sem.null-is-refused"});

    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.rules("kept"), ElementsAre("sem.null-is-refused"));
}

TEST_F(CommandLineTest, NothingIsLeftInTheDirectory)
{
    EXPECT_EQ(runSuite(DORN_CONFORMANCE, {"--directory", "/ram/conformance", "file.*"}).status, 0);

    EXPECT_TRUE(std::filesystem::is_empty(m_node.boardPath("/ram/conformance")));
}

} // namespace
} // namespace dorn::conformance
