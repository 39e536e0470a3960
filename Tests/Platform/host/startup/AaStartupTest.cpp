// SPDX-License-Identifier: MIT
#include "AaStartup.h"
#include "AaConfigTag.h"
#include "FailingFilePort.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"

#include <csignal>
#include <cstdlib>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace dorn::testkit;

namespace {

int shutdowns = 0;

void countShutdown()
{
    ++shutdowns;
}

class AaStartupTest : public NodeTest {};

} // namespace

TEST_F(AaStartupTest, NamedEeAppearsInTheListOfTheNode)
{
    ASSERT_EQ(AaConfigEarlyStartup(), 0);
    AaConfigTagSetString("tessel.service.aapro.eename", "FanS");
    AaConfigTagSetU16("tessel.service.aatbts.cpid", 0x0321);
    ASSERT_EQ(AaStartupEeStartup(), 0);
    const auto list = dorn::host::PerNode<dorn::host::EeTable>::get().list();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list.front().name, "FanS");
    EXPECT_EQ(list.front().cpid, 0x0321);
    EXPECT_EQ(list.front().pid, getpid());
    EXPECT_TRUE(list.front().alive);
}

TEST_F(AaStartupTest, EeWithoutNameIsRefused)
{
    ASSERT_EQ(AaConfigEarlyStartup(), 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(AaStartupEeStartup(), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "dorn: the EE has no name: tag \"tessel.service.aapro.eename\" is not set\n");
}

TEST_F(AaStartupTest, FullDiskIsToldWithTheStoreThatCannotBeMade)
{
    ASSERT_EQ(AaConfigEarlyStartup(), 0);
    AaConfigTagSetString("tessel.service.aapro.eename", "FanS");
    const std::string store = "dorn: store '" + m_node.nodeDirectory() + "/";
    const std::string reason = "' cannot be created: No space left on device\n";

    unsigned failures = 0;
    for (std::uint64_t room = 1; room < 100'000'000; room *= 2) { // until all stores fit
        ::testing::internal::CaptureStderr();
        int32_t status = 0;
        {
            const FullDisk disk(room);
            status = AaStartupEeStartup();
        }
        const std::string text = ::testing::internal::GetCapturedStderr();
        if (status == 0) {
            EXPECT_EQ(text, "");
            break;
        }
        ++failures;
        ASSERT_TRUE(text.starts_with(store)) << text;
        ASSERT_TRUE(text.ends_with(reason)) << text;
    }

    EXPECT_GT(failures, 0U);
    EXPECT_EQ(dorn::host::PerNode<dorn::host::EeTable>::get().list().size(), 1U);
}

TEST_F(AaStartupTest, RunDirectoryOpenToOthersIsRefusedWithTheReason)
{
    chmod(m_node.runDirectory().c_str(), 0755);
    ::testing::internal::CaptureStderr();
    EXPECT_NE(AaConfigEarlyStartup(), 0);
    const std::string text = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find("run directory '" + m_node.runDirectory() + "': is open to other users; its mode must be 0700"),
              std::string::npos)
        << text;
}

/// Begins with the system's own behaviour, however this program was started.
class ShutdownTest : public ::testing::TestWithParam<int> {
protected:
    ShutdownTest() : m_before(std::signal(GetParam(), SIG_DFL)) { shutdowns = 0; }
    ~ShutdownTest() override
    {
        AaStartupSetShutdownHandler(nullptr);
        std::signal(GetParam(), m_before);
    }

    /// How a child ends that does @p deed, as waitpid() tells it.
    static int statusOf(const std::function<void()>& deed)
    {
        const pid_t child = fork();
        if (child == 0) {
            deed();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }

private:
    void (*const m_before)(int);
};

TEST_P(ShutdownTest, RequestToEndCallsTheHandlerOnce)
{
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    EXPECT_EQ(shutdowns, 1);
}

TEST_P(ShutdownTest, RequestsWithinASecondAreOne)
{
    ManualClock clock;
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    clock.advance(std::chrono::milliseconds(999));
    raise(GetParam());
    EXPECT_EQ(shutdowns, 1);
}

TEST_P(ShutdownTest, RequestAfterASecondEndsTheProcess)
{
    const int status = statusOf([] {
        ManualClock clock;
        AaStartupSetShutdownHandler(countShutdown);
        raise(GetParam());
        clock.advance(std::chrono::seconds(1));
        raise(GetParam());
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
}

TEST_P(ShutdownTest, WithoutHandlerTheSystemsBehaviourIsRestored)
{
    const int status = statusOf([] {
        AaStartupSetShutdownHandler(countShutdown);
        AaStartupSetShutdownHandler(nullptr);
        raise(GetParam());
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
}

TEST_P(ShutdownTest, RequestsWithinASecondAreOneAlthoughTheFirstHasBeenServed)
{
    const int status = statusOf([] {
        ManualClock clock;
        AaStartupSetShutdownHandler(countShutdown);
        raise(GetParam());
        AaStartupSetShutdownHandler(nullptr);
        clock.advance(std::chrono::milliseconds(999));
        raise(GetParam());
        _exit(shutdowns);
    });
    ASSERT_TRUE(WIFEXITED(status)) << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST_P(ShutdownTest, SecondAfterARequestThatHasBeenServedTheSystemsBehaviourIsRestored)
{
    const int status = statusOf([] {
        ManualClock clock;
        AaStartupSetShutdownHandler(countShutdown);
        raise(GetParam());
        AaStartupSetShutdownHandler(nullptr);
        clock.advance(std::chrono::seconds(1));
        raise(GetParam());
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), GetParam());
}

TEST_P(ShutdownTest, HandlerThatIsSetAgainIsCalledAgain)
{
    ManualClock clock;
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    AaStartupSetShutdownHandler(nullptr);
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    EXPECT_EQ(shutdowns, 2);
}

TEST_P(ShutdownTest, SignalThatIsIgnoredStaysIgnored)
{
    std::signal(GetParam(), SIG_IGN);
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    EXPECT_EQ(shutdowns, 0);
    AaStartupSetShutdownHandler(nullptr);
    EXPECT_EQ(std::signal(GetParam(), SIG_DFL), SIG_IGN);
}

TEST_P(ShutdownTest, HandlerThatTheProgramHadComesBack)
{
    const auto own = [](int) { shutdowns += 100; };
    std::signal(GetParam(), own);
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    EXPECT_EQ(shutdowns, 1);
    AaStartupSetShutdownHandler(countShutdown);
    AaStartupSetShutdownHandler(nullptr);
    raise(GetParam());
    EXPECT_EQ(shutdowns, 101);
}

TEST_P(ShutdownTest, RequestAfterASecondCallsTheHandlerThatTheProgramHad)
{
    ManualClock clock;
    const auto own = [](int) { shutdowns += 100; };
    std::signal(GetParam(), own);
    AaStartupSetShutdownHandler(countShutdown);
    raise(GetParam());
    clock.advance(std::chrono::seconds(1));
    raise(GetParam());
    EXPECT_EQ(shutdowns, 101);
}

INSTANTIATE_TEST_SUITE_P(Signals, ShutdownTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));
