// SPDX-License-Identifier: MIT
#include "waiting/Watch.hpp"

#include "ManualClock.hpp"
#include "TestConsole.hpp"
#include "TestNode.hpp"

#include <csignal>
#include <gmock/gmock.h>

namespace dorn::tool {
namespace {

using ::testing::ThrowsMessage;

class WatchTest : public ::testing::Test {
protected:
    testkit::ManualClock m_clock;
    TestConsole m_console;
};

TEST_F(WatchTest, WithoutLimitsThereIsNoEnd)
{
    WatchProgress progress({}, m_console);
    progress.noteItem();
    m_clock.advance(std::chrono::hours(24 * 365));

    EXPECT_TRUE(progress.wantsMore());
    EXPECT_EQ(progress.until(), host::noDeadline);
    EXPECT_EQ(progress.outcome(), Outcome::Fine);
}

TEST_F(WatchTest, EndsWhenTheCountIsReached)
{
    WatchProgress progress({.count = "2", .timeout = ""}, m_console);
    progress.noteItem();
    EXPECT_TRUE(progress.wantsMore());
    progress.noteItem();

    EXPECT_FALSE(progress.wantsMore());
    EXPECT_EQ(progress.outcome(), Outcome::Fine);
}

TEST_F(WatchTest, EndsWhenTheTimeHasPassed)
{
    WatchProgress progress({.count = "", .timeout = "1.5"}, m_console);
    EXPECT_EQ(progress.until(), m_clock.monotonic() + std::chrono::milliseconds(1500));
    m_clock.advance(std::chrono::milliseconds(1499));
    EXPECT_TRUE(progress.wantsMore());
    m_clock.advance(std::chrono::milliseconds(1));

    EXPECT_FALSE(progress.wantsMore());
    EXPECT_EQ(progress.outcome(), Outcome::Fine);
}

TEST_F(WatchTest, CountThatIsNotReachedInTimeIsANo)
{
    WatchProgress progress({.count = "2", .timeout = "1"}, m_console);
    progress.noteItem();
    m_clock.advance(std::chrono::seconds(1));

    EXPECT_FALSE(progress.wantsMore());
    EXPECT_EQ(progress.outcome(), Outcome::No);
}

TEST_F(WatchTest, CountThatIsReachedJustInTimeIsFine)
{
    WatchProgress progress({.count = "1", .timeout = "1"}, m_console);
    progress.noteItem();
    m_clock.advance(std::chrono::seconds(1));

    EXPECT_EQ(progress.outcome(), Outcome::Fine);
}

TEST_F(WatchTest, EndsWhenNobodyReads)
{
    std::ostringstream answer;
    Console console(answer, answer, false);
    const WatchProgress progress({}, console);
    answer.setstate(std::ios::badbit);

    EXPECT_FALSE(progress.wantsMore());
    EXPECT_EQ(progress.outcome(), Outcome::Fine);
}

TEST_F(WatchTest, LimitsThatMakeNoSenseAreNamed)
{
    EXPECT_THAT([this] { WatchProgress({.count = "few", .timeout = ""}, m_console); },
                ThrowsMessage<UsageError>("--count: 'few' is not a number (decimal, or hexadecimal behind 0x)"));
    EXPECT_THAT(
        [this] { WatchProgress({.count = "", .timeout = "soon"}, m_console); },
        ThrowsMessage<UsageError>("--timeout: 'soon' is not a number of seconds (0 to 1000000, decimals allowed)"));
}

class StopRequestTest : public ::testing::TestWithParam<int> {
    testkit::TestNode m_node; // in which no signal is ignored
};

TEST_P(StopRequestTest, SignalAsksForTheEndAndWakes)
{
    int woken = 0;
    const StopRequest stop([&woken] { ++woken; });
    EXPECT_FALSE(stop.hasCome());

    std::raise(GetParam());

    EXPECT_TRUE(stop.hasCome());
    EXPECT_EQ(woken, 1);
}

INSTANTIATE_TEST_SUITE_P(Signals, StopRequestTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

} // namespace
} // namespace dorn::tool
