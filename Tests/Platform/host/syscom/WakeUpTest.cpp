// SPDX-License-Identifier: MIT
#include "AaSysCom.h"
#include "ManualClock.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"

#include <atomic>
#include <csignal>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;
using testkit::TestEu;

class WakeUpTest : public SysComTest {};

TEST_F(WakeUpTest, WakeUpEndsTheWaitOfTheReceiver)
{
    ManualClock clock;
    TestEu eu([] { EXPECT_EQ(AaSysComMsgReceive(generousTimeout), nullptr); });
    ASSERT_TRUE(clock.waitForSleepers());

    AaSysComEuWakeUp(eu.id());

    eu.wait();
}

TEST_F(WakeUpTest, WakeUpEndsTheWaitOfASelectiveReceive)
{
    ManualClock clock;
    TestEu eu([] { EXPECT_EQ(takeId(generousTimeout, {1}), 0U); });
    ASSERT_TRUE(clock.waitForSleepers());

    AaSysComEuWakeUp(eu.id());

    eu.wait();
}

TEST_F(WakeUpTest, WakeUpBeforeTheReceiveCountsForIt)
{
    AaSysComEuWakeUp(AaProEuCurrent());

    EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
}

TEST_F(WakeUpTest, SeveralWakeUpsCountAsOne)
{
    ManualClock clock;
    std::atomic<bool> isSecondOver{false};
    TestEu eu([&] {
        for (int count = 0; count < 3; ++count) {
            AaSysComEuWakeUp(AaProEuCurrent());
        }
        EXPECT_EQ(AaSysComMsgReceive(generousTimeout), nullptr);
        EXPECT_EQ(AaSysComMsgReceive(generousTimeout), nullptr);
        isSecondOver.store(true);
    });

    ASSERT_TRUE(clock.waitForSleepers()); // the second waits
    EXPECT_FALSE(isSecondOver.load());
    clock.advance(std::chrono::microseconds(generousTimeout));
    eu.wait();
}

TEST_F(WakeUpTest, WakeUpThatComesWithAMessageIsKeptForTheNextReceive)
{
    sendEmpty(1, address());
    AaSysComEuWakeUp(AaProEuCurrent());

    EXPECT_EQ(takeId(AA_WAIT_FOREVER), 1U);
    EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
}

TEST_F(WakeUpTest, ReceiveThatDoesNotWaitLeavesTheWakeUpForOneThatDoes)
{
    AaSysComEuWakeUp(AaProEuCurrent());

    EXPECT_EQ(AaSysComMsgReceive(AA_NO_WAIT), nullptr);
    EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
}

TEST_F(WakeUpTest, EuThatDoesNotLiveIsPassedOver)
{
    TAaProEuId id = 0;
    {
        const TestEu eu([] {});
        id = eu.id();
    }

    AaSysComEuWakeUp(id);
    AaSysComEuWakeUp(0);
    AaSysComEuWakeUp(0xFFFFFFFF);
}

TEST_F(WakeUpTest, WakeUpForAnEuThatHasEndedDoesNotReachTheNextInItsPlace)
{
    TAaProEuId id = 0;
    {
        const TestEu eu([] { AaSysComEuWakeUp(AaProEuCurrent()); }); // never taken
        id = eu.id();
    }
    ManualClock clock;
    for (int round = 0; round < 4100; ++round) {
        const bool isSamePlace = [&] {
            std::atomic<bool> isOver{false};
            TestEu eu([&] {
                EXPECT_EQ(AaSysComMsgReceive(1000), nullptr);
                isOver.store(true);
            });
            const bool isWaiting = clock.waitForSleepers();
            EXPECT_TRUE(isWaiting && !isOver.load());
            clock.advance(std::chrono::milliseconds(1));
            return (eu.id() & 0xFFFU) == (id & 0xFFFU);
        }();
        if (isSamePlace) {
            return;
        }
    }
    FAIL() << "the place has not been used again";
}

std::atomic<TAaProEuId> signalled{0};

TEST_F(WakeUpTest, SignalHandlerMayWakeTheEuThatItInterrupts)
{
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { AaSysComEuWakeUp(signalled.load()); };
    sigaction(SIGUSR1, &action, &before);
    ManualClock clock;
    const pthread_t self = pthread_self();
    signalled.store(AaProEuCurrent());
    std::thread interrupter([&] {
        EXPECT_TRUE(clock.waitForSleepers());
        pthread_kill(self, SIGUSR1);
    });

    EXPECT_EQ(AaSysComMsgReceive(generousTimeout), nullptr);

    interrupter.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(WakeUpTest, SignalWithoutWakeUpDoesNotEndAWait)
{
    struct sigaction action {};
    struct sigaction before {};
    static std::atomic<int> signals{0};
    signals.store(0);
    action.sa_handler = [](int) { signals.fetch_add(1); };
    sigaction(SIGUSR1, &action, &before);
    const pthread_t self = pthread_self();
    const TAaSysComSicad receiver = address();
    std::thread interrupter([&] {
        for (int count = 0; count < 20; ++count) {
            pthread_kill(self, SIGUSR1);
            while (signals.load() <= count) {
                std::this_thread::yield();
            }
        }
        sendEmpty(3, receiver);
    });

    EXPECT_EQ(takeId(AA_WAIT_FOREVER), 3U);

    interrupter.join();
    sigaction(SIGUSR1, &before, nullptr);
}

/// A wake-up that is lost at any moment of going to sleep leaves the receiver waiting for ever.
TEST_F(WakeUpTest, NoWakeUpIsLostHoweverItMeetsTheReceive)
{
    constexpr int rounds = 20000;
    std::atomic<int> woken{0};
    TestEu eu([&] {
        while (woken.load() < rounds) {
            EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
            woken.fetch_add(1);
        }
    });
    for (int round = 0; round < rounds; ++round) {
        AaSysComEuWakeUp(eu.id());
        while (woken.load() <= round) {
            if (round % 2 == 0) {
                std::this_thread::yield(); // so that the receiver sometimes sleeps and sometimes is on its way
            }
        }
    }
    eu.wait();
}

} // namespace
} // namespace dorn::host::test
