// SPDX-License-Identifier: MIT
#include "Process.hpp"

#include "OpenDescriptors.hpp"
#include "TestNode.hpp"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace dorn::testkit {
namespace {

using ::testing::ThrowsMessage;

/// A shell that runs @p script.
class Shell : public Process {
public:
    explicit Shell(const std::string& script) : Process("/bin/sh", {"-c", script}) {}
};

TEST(ProcessTest, ExitStatusIsGiven)
{
    EXPECT_EQ(Shell("exit 3").waitForEnd(), 3);
}

TEST(ProcessTest, SignalThatEndedItIsGiven)
{
    Shell shell("exec sleep 600");

    shell.signal(SIGTERM);

    EXPECT_EQ(shell.waitForEnd(), -SIGTERM);
}

/// "R" or "S" of a process that runs, "T" of one that has stopped.
std::string stateOf(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string number;
    std::string name;
    std::string state;
    file >> number >> name >> state;
    return state;
}

TEST(ProcessTest, ChildThatIsToStopHasStopped)
{
    Shell shell("while :; do :; done");

    for (int count = 0; count < 100; ++count) {
        shell.signal(SIGSTOP);
        ASSERT_EQ(stateOf(shell.pid()), "T");
        shell.signal(SIGSTOP); // which changes nothing
        shell.signal(SIGCONT);
    }
    shell.signal(SIGKILL);
    EXPECT_EQ(shell.waitForEnd(), -SIGKILL);
}

TEST(ProcessTest, OutputIsCollectedByStream)
{
    Shell shell("echo answer; echo reason >&2; echo more");

    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_EQ(shell.standardOutput(), "answer\nmore\n");
    EXPECT_EQ(shell.standardError(), "reason\n");
}

TEST(ProcessTest, LongOutputIsCollectedWhole)
{
    Shell shell("head -c 300000 /dev/zero");

    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_EQ(shell.standardOutput().size(), 300'000U);
}

TEST(ProcessTest, ArgumentsArriveAsTheyAre)
{
    Process process("/bin/sh", {"-c", "printf '%s|' \"$@\"", "name", "one", "two words", ""});

    EXPECT_EQ(process.waitForEnd(), 0);
    EXPECT_EQ(process.standardOutput(), "one|two words||");
}

TEST(ProcessTest, StandardInputIsEmpty)
{
    Shell shell("cat");

    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_EQ(shell.standardOutput(), "");
}

TEST(ProcessTest, ChildIsOnTheTestNode)
{
    const TestNode node;
    Shell shell("printf %s $DORN_RUN_DIR");

    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_EQ(shell.standardOutput(), node.runDirectory());
}

TEST(ProcessTest, WaitsForOutputOfARunningChild)
{
    Shell shell("echo ready; exec sleep 600");

    EXPECT_TRUE(shell.waitForOutput("ready\n"));
    EXPECT_TRUE(shell.isRunning());
}

TEST(ProcessTest, WaitForOutputEndsWithTheChild)
{
    EXPECT_FALSE(Shell("echo something").waitForOutput("else"));
}

TEST(ProcessTest, WaitForEndIsBounded)
{
    Shell shell("exec sleep 600");

    EXPECT_THAT([&] { shell.waitForEnd(Bound(1)); },
                ThrowsMessage<std::runtime_error>("process " + std::to_string(shell.pid()) + " still runs"));
}

TEST(ProcessTest, ChildIsKilledAtTheEnd)
{
    pid_t pid = 0;
    {
        const Shell shell("exec sleep 600");
        pid = shell.pid();
    }

    EXPECT_EQ(kill(pid, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(ProcessTest, GrandchildThatKeepsTheOutputOpenHoldsNothingUp)
{
    int blocker[2];
    ASSERT_EQ(pipe2(blocker, O_CLOEXEC), 0); // the grandchild ends when the test closes it
    fcntl(blocker[0], F_SETFD, 0);
    {
        Shell shell("cat <&" + std::to_string(blocker[0]) + " & echo started");
        ASSERT_TRUE(shell.waitForOutput("started"));
    }
    close(blocker[0]);
    close(blocker[1]);
}

TEST(ProcessTest, SignalToAChildThatHasEndedIsPassedOver)
{
    Shell shell("exit 0");
    EXPECT_EQ(shell.waitForEnd(), 0);

    shell.signal(SIGKILL);

    EXPECT_FALSE(shell.isRunning());
    EXPECT_EQ(shell.waitForEnd(), 0);
}

TEST(ProcessTest, ProgramThatCannotBeStartedIsAnError)
{
    try {
        const Process process("/no/such/program");
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
        EXPECT_STREQ(error.what(), "/no/such/program: No such file or directory");
    }
}

TEST(ProcessTest, NoDescriptorIsLeftOpen)
{
    const std::ptrdiff_t before = openDescriptors();

    EXPECT_EQ(Shell("exit 0").waitForEnd(), 0);
    EXPECT_THROW(Process("/no/such/program"), std::system_error);

    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace dorn::testkit
