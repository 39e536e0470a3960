// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaConfigTag.h"
#include "TestNode.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

class DornCommandTest : public ::testing::Test {
protected:
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
    testkit::Process shell("/bin/sh", {"-c", std::string(DORN_COMMAND) + " --version > /dev/full"});

    EXPECT_EQ(shell.waitForEnd(), 1);
    EXPECT_EQ(shell.standardError(), "dorn: the answer cannot be written: No space left on device\n");
}

TEST_F(DornCommandTest, ReaderWhoHasSeenEnoughIsNoFailure)
{
    testkit::Process shell("/bin/bash",
                           {"-c", std::string(DORN_COMMAND) + " completion bash | true; echo ${PIPESTATUS[0]}"});

    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_EQ(shell.standardOutput(), "0\n");
    EXPECT_EQ(shell.standardError(), "");
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
    std::vector<std::string> arguments;
    const char* awaited;
};

class HangTest : public DornCommandTest, public ::testing::WithParamInterface<HangCase> {};

TEST_P(HangTest, CommandGivesUpAndSaysWhy)
{
    const EchoService echo;
    ASSERT_EQ(AaConfigTagSetU16("a", 1), 0);
    const HeldNode held(m_node.nodeDirectory());

    EXPECT_EQ(dorn(GetParam().arguments),
              (CommandResult{1, "",
                             std::string("dorn: gave up: ") + GetParam().awaited +
                                 " did not answer in time; a process that has been stopped may hold what is needed\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, HangTest,
    ::testing::Values(HangCase{{"service", "list"}, "the node's list of services"},
                      HangCase{{"rad", "list"}, "the node's R&D parameters"},
                      HangCase{{"rad", "get", "HWA/FIRM"}, "the node's R&D parameters"},
                      HangCase{{"rad", "set", "HWA/FIRM", "1"}, "the node's R&D parameters"},
                      HangCase{{"rad", "watch"}, "the node's R&D parameters"},
                      HangCase{{"tag", "list"}, "the node's tags"}, HangCase{{"tag", "get", "a"}, "the node's tags"},
                      HangCase{{"tag", "set", "a", "--u16", "1"}, "the node's tags"},
                      HangCase{{"tag", "watch"}, "the node's tags"},
                      HangCase{{"msg", "send", "0x0300"}, "the node's messages"},
                      HangCase{{"msg", "watch"}, "the node's messages"}));

} // namespace
} // namespace dorn::tool
