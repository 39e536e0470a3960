// SPDX-License-Identifier: MIT
#include "AaSem.h"
#include "AaSysCom.h"
#include "AaTimer.h"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "Process.hpp"
#include "eu/TestEu.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageQueue.hpp"
#include "timer/TimerService.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <set>
#include <thread>
#include <vector>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;
using testkit::TestEu;

constexpr std::int32_t generousTimeout = 20'000'000;

const void* word(std::uintptr_t value)
{
    return reinterpret_cast<const void*>(value); // NOLINT: the platform never follows it
}

std::size_t threads()
{
    const auto entries = std::filesystem::directory_iterator("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// A thread that has been joined is still listed for a moment.
void awaitThreads(std::size_t count)
{
    while (threads() != count) {
        std::this_thread::yield();
    }
}

/// A clock that no time-out thread looks at any more when it ends.
class TimerClock : public ManualClock {
public:
    ~TimerClock() { closeNode(); }
};

class TimerTest : public testkit::NodeTest {
protected:
    TimerTest()
    {
        std::thread([] {}).join(); // with the first thread a sanitizer gets one of its own
        while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
            AaSysComMsgDestroy(&message);
        }
    }

    /// The identity of the next time-out; 0 when none comes.
    static std::uintptr_t takeTimeout(std::int32_t timeout = AA_WAIT_FOREVER)
    {
        void* message = AaSysComMsgReceive(timeout);
        std::uintptr_t identity = 0;
        if (message) {
            EXPECT_EQ(AaSysComMsgGetId(message), AA_TIMER_MSG_TIMEOUT);
            EXPECT_EQ(AaSysComMsgGetPayloadSize(message), sizeof identity);
            std::memcpy(&identity, AaSysComMsgGetPayload(message), sizeof identity);
        }
        AaSysComMsgDestroy(&message);
        return identity;
    }
};

TEST_F(TimerTest, TimeOutArrivesWhenTheTimeHasPassed)
{
    TimerClock clock;
    EXPECT_NE(AaTimerArm(1000, word(0xABCD)), 0U);
    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(clock.nextDeadline(), clock.monotonic() + std::chrono::microseconds(1000));

    clock.advance(std::chrono::nanoseconds(999'999));
    EXPECT_EQ(takeTimeout(AA_NO_WAIT), 0U);
    clock.advance(std::chrono::nanoseconds(1));

    EXPECT_EQ(takeTimeout(), 0xABCDU);
}

TEST_F(TimerTest, TimeOutOfRealTimeIsNotEarly)
{
    const Deadline until = Clock::get().monotonic() + std::chrono::milliseconds(5);
    AaTimerArm(5000, word(1));

    EXPECT_EQ(takeTimeout(), 1U);

    EXPECT_GE(Clock::get().monotonic(), until);
}

TEST_F(TimerTest, TimeOutOfZeroArrivesAtOnce)
{
    const TimerClock clock; // stands still
    EXPECT_NE(AaTimerArm(0, word(1)), 0U);

    EXPECT_EQ(takeTimeout(), 1U);
}

TEST_F(TimerTest, NullIsAnIdentityToo)
{
    AaTimerArm(0, nullptr);

    void* message = AaSysComMsgReceive(generousTimeout);

    ASSERT_NE(message, nullptr);
    EXPECT_EQ(AaSysComMsgGetSender(message), 0U);
    AaSysComMsgDestroy(&message);
}

TEST_F(TimerTest, TimeOutsArriveInTheOrderOfTheirDeadlines)
{
    TimerClock clock;
    for (const std::uintptr_t delay : {3000U, 1000U, 2000U}) {
        AaTimerArm(static_cast<std::int64_t>(delay), word(delay));
    }
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::milliseconds(3));

    EXPECT_EQ(takeTimeout(), 1000U);
    EXPECT_EQ(takeTimeout(), 2000U);
    EXPECT_EQ(takeTimeout(), 3000U);
}

TEST_F(TimerTest, TimeOutsOfOneDeadlineArriveInTheOrderInWhichTheyWereArmed)
{
    TimerClock clock;
    for (std::uintptr_t identity = 1; identity <= 5; ++identity) {
        AaTimerArm(1000, word(identity));
    }
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::milliseconds(1));

    for (std::uintptr_t identity = 1; identity <= 5; ++identity) {
        EXPECT_EQ(takeTimeout(), identity);
    }
}

TEST_F(TimerTest, EarlierTimeOutArmedLaterIsNotHeldUp)
{
    TimerClock clock;
    AaTimerArm(10'000'000, word(1));
    ASSERT_TRUE(clock.waitForSleepers());
    AaTimerArm(1000, word(2));
    const Deadline due = clock.monotonic() + std::chrono::milliseconds(1);
    while (clock.nextDeadline() != due) {
    }

    clock.advance(std::chrono::milliseconds(1));

    EXPECT_EQ(takeTimeout(), 2U);
}

TEST_F(TimerTest, CancelledTimeOutDoesNotArrive)
{
    TimerClock clock;
    const TAaTimerId cancelled = AaTimerArm(1000, word(1));
    AaTimerArm(2000, word(2));
    EXPECT_EQ(AaTimerCancel(cancelled), 0);
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::milliseconds(2));

    EXPECT_EQ(takeTimeout(), 2U);
    EXPECT_EQ(takeTimeout(AA_NO_WAIT), 0U);
}

TEST_F(TimerTest, SecondCancelIsRefused)
{
    const TAaTimerId timer = AaTimerArm(1'000'000'000, word(1));

    EXPECT_EQ(AaTimerCancel(timer), 0);
    EXPECT_EQ(AaTimerCancel(timer), 1);
}

TEST_F(TimerTest, CancelAfterDeliveryIsRefused)
{
    const TAaTimerId timer = AaTimerArm(0, word(1));
    EXPECT_EQ(takeTimeout(), 1U);
    while (AaTimerCancel(timer) == 0) { // it may still be on its way out of the list
    }

    EXPECT_EQ(AaTimerCancel(timer), 1);
}

TEST_F(TimerTest, CancelOfWhatWasNeverArmedIsRefused)
{
    EXPECT_EQ(AaTimerCancel(0), 1);
    EXPECT_EQ(AaTimerCancel(4711), 1);
}

TEST_F(TimerTest, NegativeTimeOutIsRefused)
{
    EXPECT_EQ(AaTimerArm(-1, word(1)), 0U);
    EXPECT_EQ(AaTimerArm(INT64_MIN, word(1)), 0U);
}

TEST_F(TimerTest, GreatestTimeOutNeverArrives)
{
    TimerClock clock;
    for (const std::int64_t timeout : {INT64_MAX, INT64_MAX / 1000, INT64_MAX / 1001}) {
        const TAaTimerId timer = AaTimerArm(timeout, word(1));
        EXPECT_NE(timer, 0U);
        AaTimerArm(1000, word(2));
        ASSERT_TRUE(clock.waitForSleepers());
        clock.advance(std::chrono::hours(24 * 365));

        EXPECT_EQ(takeTimeout(), 2U);
        EXPECT_EQ(takeTimeout(AA_NO_WAIT), 0U);
        EXPECT_EQ(AaTimerCancel(timer), 0);
    }
}

TEST_F(TimerTest, IdsAreNeverUsedAgain)
{
    std::set<TAaTimerId> ids;
    for (int count = 0; count < 100; ++count) {
        ids.insert(AaTimerArm(0, word(1)));
        takeTimeout();
    }
    closeNode();
    ids.insert(AaTimerArm(0, word(1)));

    EXPECT_EQ(ids.size(), 101U);
    EXPECT_EQ(ids.count(0), 0U);
}

TEST_F(TimerTest, TenThousandArmedTimeOutsArriveInOrder)
{
    constexpr std::uintptr_t count = 10000;
    TimerClock clock;
    std::vector<TAaTimerId> cancelled;
    for (std::uintptr_t index = 0; index < count; ++index) {
        const std::uintptr_t delay = (index * 7919 + 1) % count; // each once, in no order
        const TAaTimerId timer = AaTimerArm(static_cast<std::int64_t>(delay), word(delay + 1));
        if (delay % 4 == 3) {
            cancelled.push_back(timer);
        }
    }
    for (const TAaTimerId timer : cancelled) {
        AaTimerCancel(timer);
    }
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::microseconds(count));

    for (std::uintptr_t delay = 0; delay < count; ++delay) {
        if (delay % 4 != 3) {
            ASSERT_EQ(takeTimeout(generousTimeout), delay + 1);
        }
    }
    EXPECT_EQ(takeTimeout(AA_NO_WAIT), 0U);
}

TEST_F(TimerTest, TimeOutArrivesAtTheEuThatArmedIt)
{
    std::uintptr_t taken = 0;
    TestEu eu([&] {
        AaTimerArm(0, word(5));
        taken = takeTimeout();
    });
    eu.wait();

    EXPECT_EQ(taken, 5U);
    EXPECT_EQ(takeTimeout(AA_NO_WAIT), 0U);
}

TEST_F(TimerTest, LateTimeOutOfAnEuThatHasEndedIsDropped)
{
    TimerClock clock;
    {
        const TestEu eu([] { AaTimerArm(1000, word(1)); });
    }
    AaTimerArm(2000, word(2));
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::milliseconds(2));

    EXPECT_EQ(takeTimeout(), 2U);
    EXPECT_TRUE(m_log.texts().empty());
}

/// Fills the queue of the EU that makes it.
class FullQueue {
public:
    FullQueue() : m_cpid(AaSysComUserRegister(0, AaProEuCurrent()))
    {
        for (int count = 0; count < MessageQueue::capacity; ++count) {
            void* message = AaSysComMsgCreate(1, 0, AaSysComSicadGet(m_cpid, AaSysComGetOwnNid()));
            EXPECT_EQ(AaSysComMsgSend(&message), 0);
        }
    }
    ~FullQueue() { AaSysComUserDeregister(m_cpid); }
    FullQueue(const FullQueue&) = delete;
    FullQueue& operator=(const FullQueue&) = delete;

    static void empty()
    {
        for (int count = 0; count < MessageQueue::capacity; ++count) {
            void* message = AaSysComMsgReceive(AA_NO_WAIT);
            EXPECT_EQ(AaSysComMsgGetId(message), 1U);
            AaSysComMsgDestroy(&message);
        }
    }

private:
    TAaSysComCpid m_cpid;
};

constexpr const char* putOff = "Warning 0x0 Time-out put off: the queue of its EU is full";

TEST_F(TimerTest, FullQueuePutsTimeOutsOffUntilThereIsRoom)
{
    const FullQueue queue;
    AaTimerArm(0, word(1));
    AaTimerArm(0, word(2));
    ASSERT_TRUE(m_log.waitFor(putOff));

    FullQueue::empty();

    EXPECT_EQ(takeTimeout(), 1U);
    EXPECT_EQ(takeTimeout(), 2U);
    EXPECT_EQ(m_log.count(putOff), m_log.texts().size());
}

TEST_F(TimerTest, TimeOutThatIsPutOffIsSaidOnce)
{
    TimerClock clock;
    const FullQueue queue;
    AaTimerArm(0, word(1));
    for (int count = 0; count < 5; ++count) {
        ASSERT_TRUE(clock.waitForSleepers());
        clock.advance(std::chrono::milliseconds(10));
    }

    FullQueue::empty();
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::milliseconds(10));

    EXPECT_EQ(takeTimeout(), 1U);
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{putOff});
}

TEST_F(TimerTest, TimeOutThatIsPutOffCanBeCancelled)
{
    const FullQueue queue;
    const TAaTimerId timer = AaTimerArm(0, word(1));
    ASSERT_TRUE(m_log.waitFor(putOff));

    EXPECT_EQ(AaTimerCancel(timer), 0);

    FullQueue::empty();
    AaTimerArm(20'000, word(2));
    EXPECT_EQ(takeTimeout(), 2U);
}

TEST_F(TimerTest, FullQueueHoldsUpNoOtherEu)
{
    const FullQueue queue;
    AaTimerArm(0, word(1));
    ASSERT_TRUE(m_log.waitFor(putOff));
    std::uintptr_t taken = 0;
    TestEu eu([&] {
        AaTimerArm(1000, word(5));
        taken = takeTimeout(generousTimeout);
    });
    eu.wait();

    EXPECT_EQ(taken, 5U);
    FullQueue::empty();
    EXPECT_EQ(takeTimeout(), 1U);
}

TEST_F(TimerTest, ThereIsNoThreadBeforeTheFirstTimeOut)
{
    const std::size_t before = threads();
    AaTimerCancel(1);
    EXPECT_EQ(threads(), before);
    EXPECT_EQ(PerNode<TimerService>::ifOpen(), nullptr);

    AaTimerArm(1'000'000'000, word(1));

    EXPECT_EQ(threads(), before + 1);
}

TEST_F(TimerTest, ThreadEndsWithTheNode)
{
    const std::size_t before = threads();
    AaTimerArm(1'000'000'000, word(1));

    closeNode();

    awaitThreads(before);
}

TEST_F(TimerTest, ArmingAndCancellingByManyEusDoesNoHarm)
{
    const auto body = [] {
        std::uintptr_t due = 0;
        for (std::uintptr_t index = 1; index <= 500; ++index) {
            const TAaTimerId timer = AaTimerArm(static_cast<std::int64_t>(index % 50), word(index));
            if (index % 2 == 0) {
                due += AaTimerCancel(timer) == 0 ? 0U : 1U;
            } else {
                ++due;
            }
        }
        while (due > 0) {
            EXPECT_NE(takeTimeout(generousTimeout), 0U);
            --due;
        }
    };

    TestEu first(body);
    TestEu second(body);
    TestEu third(body);
}

TEST(TimerWithoutThreadsTest, TimeOutThatCannotBeArmedDoesNotArrive)
{
    const testkit::TestNode node({.log = "stderr"});
    testkit::Process process(DORN_TIMER_PROGRAM);

    EXPECT_EQ(process.waitForEnd(), 0);

    EXPECT_NE(process.standardError().find("Time-out not armed: "), std::string::npos) << process.standardError();
    EXPECT_EQ(process.standardOutput(), "arrived: 2\n");
}

} // namespace
} // namespace dorn::host::test
