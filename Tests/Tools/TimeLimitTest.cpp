// SPDX-License-Identifier: MIT
#include "waiting/TimeLimit.hpp"

#include "ManualClock.hpp"
#include "Outcome.hpp"

#include <atomic>
#include <future>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

TEST(TimeLimitTest, CallsWhenTheTimeIsUp)
{
    testkit::ManualClock clock;
    std::promise<void> called;
    const TimeLimit limit(std::chrono::seconds(2), [&called] { called.set_value(); });

    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::seconds(2));

    EXPECT_EQ(called.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST(TimeLimitTest, DoesNotCallBefore)
{
    testkit::ManualClock clock;
    std::atomic<bool> isCalled{false};
    {
        const TimeLimit limit(std::chrono::seconds(2), [&isCalled] { isCalled = true; });
        ASSERT_TRUE(clock.waitForSleepers());
        clock.advance(std::chrono::milliseconds(1999));
    }

    EXPECT_FALSE(isCalled);
}

TEST(TimeLimitTest, AnswerIsHandedOn)
{
    EXPECT_EQ(answerOf("the test", [] { return 42; }), 42);
}

TEST(TimeLimitTest, ExceptionIsHandedOn)
{
    EXPECT_THROW(answerOf("the test", []() -> int { throw Failure("no"); }), Failure);
}

TEST(TimeLimitDeathTest, GivingUpSaysWhatWasAwaited)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(giveUp("the node's tags"), ::testing::ExitedWithCode(1),
                "^dorn: gave up: the node's tags did not answer in time; a process that has been stopped may hold what "
                "is needed\n$");
}

} // namespace
} // namespace dorn::tool
