// SPDX-License-Identifier: MIT
#include "board/ChildServiceProcess.hpp"

#include "Bound.hpp"

#include <chrono>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace dorn::tool {
namespace {

class ChildServiceProcessTest : public ::testing::Test {
protected:
    std::unique_ptr<ServiceProcess> start(const std::string& script, std::vector<Variable> environment = {})
    {
        ServiceDescription service{"A", "/bin/sh", {"-c", script}, std::move(environment)};
        return m_launcher.launch(service);
    }
    /// Waits on the process's descriptors until something is so.
    static bool comesTrue(ServiceProcess& process, const std::function<bool()>& isSo)
    {
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (!isSo()) {
            std::vector<pollfd> entries;
            for (const int descriptor : process.descriptors()) {
                entries.push_back({descriptor, POLLIN, 0});
            }
            poll(entries.data(), entries.size(), 100);
            if (std::chrono::steady_clock::now() >= end) {
                return false;
            }
        }
        return true;
    }
    static int statusOf(ServiceProcess& process)
    {
        EXPECT_TRUE(comesTrue(process, [&process] { return process.status().has_value(); }));
        return process.status().value_or(-1000);
    }
    static std::vector<std::string> linesOf(ServiceProcess& process, std::size_t count)
    {
        std::vector<std::string> lines;
        EXPECT_TRUE(comesTrue(process, [&] {
            const std::vector<std::string> some = process.takeLines();
            lines.insert(lines.end(), some.begin(), some.end());
            return lines.size() >= count;
        }));
        return lines;
    }

    ChildServiceLauncher m_launcher{{{"FIRST", "of the board"}, {"SECOND", "of the board"}}};
};

TEST_F(ChildServiceProcessTest, StatusIsThatOfItsEnd)
{
    EXPECT_EQ(statusOf(*start("exit 7")), 7);
    EXPECT_EQ(statusOf(*start("kill -9 $$")), -SIGKILL);
}

TEST_F(ChildServiceProcessTest, RunsUntilASignalEndsIt)
{
    const auto process = start("echo ready; exec sleep 1000");
    linesOf(*process, 1);
    EXPECT_EQ(process->status(), std::nullopt);
    process->signal(SIGTERM);
    EXPECT_EQ(statusOf(*process), -SIGTERM);
}

TEST_F(ChildServiceProcessTest, LinesOfBothStreamsArrive)
{
    const auto process = start("echo one; echo two >&2; printf three");
    statusOf(*process);
    EXPECT_EQ(linesOf(*process, 3), (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(ChildServiceProcessTest, FloodIsCut)
{
    const auto process = start("yes | head -100000");
    std::size_t most = 0;
    EXPECT_TRUE(comesTrue(*process, [&] {
        most = std::max(most, process->takeLines().size());
        return process->status().has_value();
    }));
    EXPECT_EQ(most, 20U);
}

TEST_F(ChildServiceProcessTest, LineWithoutAnEndIsCut)
{
    const auto process = start("head -c 5000 /dev/zero | tr '\\0' x");
    EXPECT_EQ(linesOf(*process, 1).front(), std::string(1000, 'x'));
}

TEST_F(ChildServiceProcessTest, OwnVariablesStandBeforeThoseOfTheBoard)
{
    const auto process = start("echo $FIRST, $SECOND, $HOME", {{"SECOND", "its own"}});
    const char* const home = getenv("HOME");
    EXPECT_EQ(linesOf(*process, 1).front(), std::string("of the board, its own, ") + (home ? home : ""));
}

TEST_F(ChildServiceProcessTest, StoppedProcessIsSeen)
{
    const auto process = start("echo ready; exec sleep 1000");
    linesOf(*process, 1);
    EXPECT_FALSE(process->isStopped());
    process->signal(SIGSTOP);
    EXPECT_TRUE(comesTrue(*process, [&] { return process->isStopped(); }));
}

TEST_F(ChildServiceProcessTest, LeadsAGroupOfItsOwn)
{
    const auto process = start("echo ready; exec sleep 1000");
    linesOf(*process, 1);
    EXPECT_EQ(getpgid(process->pid()), process->pid());
}

/// Its output ends when nobody holds it any more.
TEST_F(ChildServiceProcessTest, KillReachesWhatItHasStarted)
{
    const auto process = start("sleep 1000 & echo ready; wait");
    linesOf(*process, 1);
    process->signal(SIGKILL);
    EXPECT_TRUE(comesTrue(*process, [&process] {
        process->status();
        process->takeLines();
        return process->descriptors().empty();
    }));
}

TEST_F(ChildServiceProcessTest, IsKilledWithItsObject)
{
    auto process = start("echo ready; exec sleep 1000");
    linesOf(*process, 1);
    const pid_t pid = process->pid();
    process.reset();
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST_F(ChildServiceProcessTest, ProgramThatIsNotThereIsAnError)
{
    EXPECT_THROW(m_launcher.launch({"A", "/nowhere/program"}), std::system_error);
}

} // namespace
} // namespace dorn::tool
