// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaConfigTag.h"
#include "AaSysLog.h"
#include "TestNode.hpp"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/file.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

class DornCommandTest : public ::testing::Test {
protected:
    /// Runs a line of the shell in which "$0" is the command, whatever characters its path has.
    static CommandResult shell(const std::string& line)
    {
        testkit::Process process("/bin/bash", {"-c", line, DORN_COMMAND});
        const int status = process.waitForEnd();
        return {status, process.standardOutput(), process.standardError()};
    }

    testkit::TestNode m_node;
};

TEST_F(DornCommandTest, StatusTellsFineFromNoFromWrongUse)
{
    EXPECT_EQ(dorn({"--version"}).status, 0);
    EXPECT_EQ(dorn({"service", "list"}).status, 1);
    EXPECT_EQ(dorn({"service", "list", "--bad"}).status, 2);
}

TEST_F(DornCommandTest, NodeWithoutServicesIsSaidInWords)
{
    EXPECT_EQ(dorn({"service", "list"}),
              (CommandResult{1, "",
                             "dorn: no services have run here: node 0x0F01 in '" + m_node.runDirectory() +
                                 "' (DORN_RUN_DIR and DORN_NID choose another)\n"}));
}

TEST_F(DornCommandTest, AnswerThatCannotBeWrittenIsANo)
{
    EXPECT_EQ(shell("\"$0\" --version > /dev/full"),
              (CommandResult{1, "", "dorn: the answer cannot be written: No space left on device\n"}));
}

TEST_F(DornCommandTest, ClosedStandardOutputIsANoAsWell)
{
    EXPECT_EQ(shell("\"$0\" --version >&-"),
              (CommandResult{1, "", "dorn: the answer cannot be written: Bad file descriptor\n"}));
}

TEST_F(DornCommandTest, NoStoreGetsTheNumberOfAClosedStandardError)
{
    AaConfigTagSetU32("n", 1);
    const testkit::Process watch("/bin/bash", {"-c", "exec \"$0\" tag watch 2>&-", DORN_COMMAND});
    do {
        AaConfigTagSetString("sync", "x");
        ASSERT_TRUE(watch.isRunning());
    } while (!watch.waitForOutput("sync", std::chrono::milliseconds(10)));
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(watch.pid()) + "/fd/2"), "/dev/null");
}

TEST_F(DornCommandTest, ReaderWhoHasSeenEnoughIsNoFailure)
{
    EXPECT_EQ(shell("\"$0\" completion bash | true; echo ${PIPESTATUS[0]}"), (CommandResult{0, "0\n", ""}));
}

/// Somebody holds what a command needs, for as long as it likes.
class HeldNode {
public:
    explicit HeldNode(const std::string& directory) : m_descriptor(open(directory.c_str(), O_RDONLY | O_CLOEXEC))
    {
        flock(m_descriptor, LOCK_EX);
    }
    ~HeldNode() { close(m_descriptor); }
    HeldNode(const HeldNode&) = delete;
    HeldNode& operator=(const HeldNode&) = delete;

private:
    int m_descriptor;
};

struct HangCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* awaited;
};

void PrintTo(const HangCase& verb, std::ostream* stream)
{
    *stream << verb.name;
}

class HangTest : public DornCommandTest, public ::testing::WithParamInterface<HangCase> {};

TEST_P(HangTest, CommandGivesUpAndSaysWhy)
{
    const EchoService echo;
    ASSERT_EQ(AaConfigTagSetU16("a", 1), 0);
    const HeldNode held(m_node.nodeDirectory());

    EXPECT_EQ(
        dorn(GetParam().arguments),
        (CommandResult{1, "",
                       std::string("dorn: gave up: ") + GetParam().awaited +
                           " did not answer in time; a process that has been stopped may hold what is needed\n"}));
}

INSTANTIATE_TEST_SUITE_P(Verbs, HangTest,
                         ::testing::Values(HangCase{"ServiceList", {"service", "list"}, "the node's list of services"},
                                           HangCase{"RadList", {"rad", "list"}, "the node's R&D parameters"},
                                           HangCase{"RadGet", {"rad", "get", "HWA/FIRM"}, "the node's R&D parameters"},
                                           HangCase{
                                               "RadSet", {"rad", "set", "HWA/FIRM", "1"}, "the node's R&D parameters"},
                                           HangCase{"RadWatch", {"rad", "watch"}, "the node's R&D parameters"},
                                           HangCase{"TagList", {"tag", "list"}, "the node's tags"},
                                           HangCase{"TagGet", {"tag", "get", "a"}, "the node's tags"},
                                           HangCase{"TagSet", {"tag", "set", "a", "--u16", "1"}, "the node's tags"},
                                           HangCase{"TagWatch", {"tag", "watch"}, "the node's tags"},
                                           HangCase{"MsgSend", {"msg", "send", "0x0300"}, "the node's messages"},
                                           HangCase{"MsgWatch", {"msg", "watch"}, "the node's messages"}),
                         [](const auto& verb) { return verb.param.name; });

TEST(HeldLogTest, CommandGivesUpAndSaysWhy)
{
    const testkit::TestNode node({.nodeId = std::nullopt, .log = "file", .logLevel = std::nullopt});
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "there is a log");
    const HeldNode held(node.nodeDirectory());

    EXPECT_EQ(
        dorn({"log"}),
        (CommandResult{1, "",
                       "dorn: gave up: the node's log did not answer in time; a process that has been stopped may "
                       "hold what is needed\n"}));
}

} // namespace
} // namespace dorn::tool
