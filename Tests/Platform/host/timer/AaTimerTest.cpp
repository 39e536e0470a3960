// SPDX-License-Identifier: MIT
#include "AaTimer.h"
#include "AaSysCom.h"
#include "ManualClock.hpp"
#include "NodeTest.hpp"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

using namespace dorn::testkit;

namespace {

std::size_t threadCount()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

/// The identity that a time-out message of the calling EU bears; null when there is no message.
const void* takeIdentity(std::int32_t timeout = AA_WAIT_FOREVER)
{
    void* message = AaSysComMsgReceive(timeout);
    const void* identity = nullptr;
    if (message) {
        EXPECT_EQ(AaSysComMsgGetId(message), AA_TIMER_MSG_TIMEOUT);
        EXPECT_EQ(AaSysComMsgGetPayloadSize(message), sizeof identity);
        std::memcpy(&identity, AaSysComMsgGetPayload(message), sizeof identity);
    }
    AaSysComMsgDestroy(&message);
    return identity;
}

class AaTimerTest : public NodeTest {
protected:
    ManualClock m_clock;
    int m_first = 0;
    int m_second = 0;
};

} // namespace

TEST_F(AaTimerTest, TimeOutArrivesAsMessageWithTheIdentityWhenItsTimeHasPassed)
{
    ASSERT_NE(AaTimerArm(1000, &m_first), 0U);
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::microseconds(999));
    ASSERT_TRUE(m_clock.waitForSleepers());
    EXPECT_EQ(takeIdentity(AA_NO_WAIT), nullptr);
    m_clock.advance(std::chrono::microseconds(1));
    EXPECT_EQ(takeIdentity(), &m_first);
}

TEST_F(AaTimerTest, EarlierTimeOutArmedLaterArrivesFirst)
{
    AaTimerArm(2000, &m_second);
    ASSERT_TRUE(m_clock.waitForSleepers());
    AaTimerArm(1000, &m_first);
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::milliseconds(2));
    EXPECT_EQ(takeIdentity(), &m_first);
    EXPECT_EQ(takeIdentity(), &m_second);
}

TEST_F(AaTimerTest, TimeOutsOfOneMomentArriveAsTheyWereArmed)
{
    AaTimerArm(1000, &m_first);
    AaTimerArm(1000, &m_second);
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(takeIdentity(), &m_first);
    EXPECT_EQ(takeIdentity(), &m_second);
}

TEST_F(AaTimerTest, CancelledTimeOutDoesNotArrive)
{
    const TAaTimerId timer = AaTimerArm(1000, &m_first);
    AaTimerArm(1000, &m_second);
    EXPECT_EQ(AaTimerCancel(timer), 0);
    EXPECT_EQ(AaTimerCancel(timer), 1);
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(takeIdentity(), &m_second);
    EXPECT_EQ(takeIdentity(AA_NO_WAIT), nullptr);
}

TEST_F(AaTimerTest, DeliveredTimeOutCannotBeCancelled)
{
    const TAaTimerId timer = AaTimerArm(0, &m_first);
    EXPECT_EQ(takeIdentity(), &m_first);
    EXPECT_EQ(AaTimerCancel(timer), 1);
}

TEST_F(AaTimerTest, NullIdentityArrivesToo)
{
    AaTimerArm(0, nullptr);
    void* message = AaSysComMsgReceive(AA_WAIT_FOREVER);
    ASSERT_NE(message, nullptr);
    AaSysComMsgDestroy(&message);
}

TEST_F(AaTimerTest, NegativeTimeIsRefused)
{
    EXPECT_EQ(AaTimerArm(-1, &m_first), 0U);
}

TEST_F(AaTimerTest, UnknownTimerCannotBeCancelled)
{
    EXPECT_EQ(AaTimerCancel(0), 1);
    AaTimerArm(1000, &m_first);
    EXPECT_EQ(AaTimerCancel(999), 1);
}

TEST_F(AaTimerTest, TimeOutOfAnEndedEuDoesNoHarm)
{
    std::thread([this] { AaTimerArm(1000, &m_first); }).join();
    AaTimerArm(1000, &m_second);
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(takeIdentity(), &m_second);
    EXPECT_EQ(takeIdentity(AA_NO_WAIT), nullptr);
}

TEST_F(AaTimerTest, ManyTimeOutsAllArriveInOrder)
{
    constexpr int count = 10000;
    std::vector<char> identities(count);
    for (int index = count; index-- > 0;) {
        ASSERT_NE(AaTimerArm(index, &identities[static_cast<std::size_t>(index)]), 0U);
    }
    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(std::chrono::microseconds(count));
    for (const char& identity : identities) {
        ASSERT_EQ(takeIdentity(), &identity);
    }
}

TEST_F(AaTimerTest, ThreadStartsWithTheFirstTimeOut)
{
    const std::size_t before = threadCount();
    EXPECT_EQ(AaTimerCancel(1), 1);
    EXPECT_EQ(threadCount(), before);
    AaTimerArm(1000, &m_first);
    EXPECT_EQ(threadCount(), before + 1);
}
