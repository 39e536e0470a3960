// SPDX-License-Identifier: MIT
#include "ManualClock.hpp"

#include "AaSem.h"
#include "AaSysCom.h"
#include "NodeTest.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <latch>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace dorn::testkit {
namespace {

using namespace std::chrono_literals;
using host::Clock;
using host::Deadline;
using host::noDeadline;
using std::chrono::milliseconds;

class ManualClockTest : public ::testing::Test {
protected:
    Deadline after(host::Nanoseconds time) const { return m_clock.monotonic() + time; }

    ManualClock m_clock;
};

/// Two eventfds; the second can be signalled.
class Watched {
public:
    ~Watched()
    {
        close(m_quiet);
        close(m_event);
    }
    Watched() = default;
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;

    int event() const { return m_event; }
    void signal() const { eventfd_write(m_event, 1); }
    int wait(Deadline until) const
    {
        std::array<pollfd, 2> entries{pollfd{m_quiet, POLLIN, 0}, pollfd{m_event, POLLIN, 0}};
        return Clock::get().waitDescriptors(entries, until);
    }

private:
    int m_quiet = eventfd(0, EFD_CLOEXEC);
    int m_event = eventfd(0, EFD_CLOEXEC);
};

TEST_F(ManualClockTest, StandsStill)
{
    const auto monotonic = Clock::get().monotonic();
    const auto wall = Clock::get().wall();
    std::this_thread::yield();

    EXPECT_EQ(Clock::get().monotonic(), monotonic);
    EXPECT_EQ(Clock::get().wall(), wall);
}

TEST_F(ManualClockTest, AdvanceMovesBothClocks)
{
    const auto monotonic = m_clock.monotonic();
    const auto wall = m_clock.wall();

    m_clock.advance(5s);

    EXPECT_EQ(Clock::get().monotonic(), monotonic + 5s);
    EXPECT_EQ(Clock::get().wall(), wall + 5s);
}

TEST_F(ManualClockTest, SetWallLeavesTheMonotonicClock)
{
    const auto monotonic = m_clock.monotonic();

    m_clock.setWall(10s);

    EXPECT_EQ(m_clock.wall(), 10s);
    EXPECT_EQ(m_clock.monotonic(), monotonic);
}

TEST(ManualClockLifeTest, BeginsAtTheGivenWallTime)
{
    const ManualClock clock(123s);

    EXPECT_EQ(Clock::get().wall(), 123s);
}

TEST(ManualClockLifeTest, EndPutsThePreviousClockBack)
{
    Clock* const before = &Clock::get();
    {
        const ManualClock clock;
        EXPECT_NE(&Clock::get(), before);
    }

    EXPECT_EQ(&Clock::get(), before);
}

TEST_F(ManualClockTest, WaiterOnAWordIsWokenAtItsDeadlineAndNotBefore)
{
    std::atomic<std::uint32_t> word{7};
    const Deadline until = after(10s);
    const std::jthread waiter([&] {
        while (Clock::get().monotonic() < until) {
            Clock::get().waitWhile(word, 7, until, false);
        }
    });

    ASSERT_TRUE(m_clock.waitForSleepers());
    m_clock.advance(10s - 1ns);
    ASSERT_TRUE(m_clock.waitForSleepers());
    EXPECT_EQ(m_clock.nextDeadline(), until);
    m_clock.advance(1ns);

    EXPECT_EQ(m_clock.nextDeadline(), std::nullopt) << "advance() returns when the waiter has left";
}

TEST_F(ManualClockTest, WaiterOnAWordIsWokenByItsWaker)
{
    AaSem* semaphore = AaSemCreateC(0);
    std::int32_t status = -1;
    std::jthread taker([&] { status = AaSemTake(semaphore, 1'000'000); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    AaSemGive(semaphore);
    taker.join();

    EXPECT_EQ(status, 0);
    AaSemDestroy(&semaphore);
}

TEST_F(ManualClockTest, WaitWhileReturnsAtOnceForAWordThatHasChanged)
{
    std::atomic<std::uint32_t> word{7};

    Clock::get().waitWhile(word, 6, noDeadline, false);
    Clock::get().waitWhile(word, 6, after(1s), true);
}

TEST_F(ManualClockTest, WaitWhileReturnsAtOnceWhenItsDeadlineHasPassed)
{
    std::atomic<std::uint32_t> word{7};

    Clock::get().waitWhile(word, 7, m_clock.monotonic(), false);
}

TEST_F(ManualClockTest, SemaphoreTimeOutFollowsTheClock)
{
    AaSem* semaphore = AaSemCreateC(0);
    std::int32_t status = -1;
    std::jthread taker([&] { status = AaSemTake(semaphore, 2'000'000); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    m_clock.advance(2s);
    taker.join();

    EXPECT_EQ(status, 1);
    AaSemDestroy(&semaphore);
}

TEST_F(ManualClockTest, EventEndsAWaitForSeveralDescriptors)
{
    const Watched watched;
    int count = -1;
    std::jthread waiter([&] { count = watched.wait(after(10s)); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    watched.signal();
    waiter.join();

    EXPECT_EQ(count, 1);
}

TEST_F(ManualClockTest, DeadlineEndsAWaitForSeveralDescriptors)
{
    const Watched watched;
    int count = -1;
    std::jthread waiter([&] { count = watched.wait(after(10s)); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    m_clock.advance(10s);
    waiter.join();

    EXPECT_EQ(count, 0);
}

TEST_F(ManualClockTest, DescriptorsThatAreReadyAreSeenThoughTheDeadlineHasPassed)
{
    const Watched watched;
    EXPECT_EQ(watched.wait(m_clock.monotonic()), 0);

    watched.signal();

    EXPECT_EQ(watched.wait(m_clock.monotonic()), 1);
    EXPECT_EQ(watched.wait(noDeadline), 1);
}

TEST_F(ManualClockTest, DescriptorEndsAWaitForIt)
{
    const Watched watched;
    bool isReady = false;
    std::jthread waiter([&] { isReady = Clock::get().waitDescriptor(watched.event(), POLLIN, after(10s)); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    watched.signal();
    waiter.join();

    EXPECT_TRUE(isReady);
}

TEST_F(ManualClockTest, DeadlineEndsAWaitForADescriptor)
{
    const Watched watched;
    bool isReady = true;
    std::jthread waiter([&] { isReady = Clock::get().waitDescriptor(watched.event(), POLLIN, after(10s)); });
    ASSERT_TRUE(m_clock.waitForSleepers());

    m_clock.advance(10s);
    waiter.join();

    EXPECT_FALSE(isReady);
}

TEST_F(ManualClockTest, DescriptorThatIsReadyIsSeenThoughTheDeadlineHasPassed)
{
    const Watched watched;
    EXPECT_FALSE(Clock::get().waitDescriptor(watched.event(), POLLIN, m_clock.monotonic()));

    watched.signal();

    EXPECT_TRUE(Clock::get().waitDescriptor(watched.event(), POLLIN, m_clock.monotonic()));
    EXPECT_TRUE(Clock::get().waitDescriptor(watched.event(), POLLIN, noDeadline));
}

TEST_F(ManualClockTest, SignalDoesNotEndAWaitForDescriptors)
{
    static std::atomic<int> signals{0};
    signals.store(0);
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { signals.fetch_add(1); };
    sigaction(SIGUSR1, &action, &before);
    const Watched watched;
    const Deadline until = after(10s);
    std::thread interrupter([&, self = pthread_self()] {
        EXPECT_TRUE(m_clock.waitForSleepers());
        while (signals.load() < 200) { // more than can come before the wait has begun
            pthread_kill(self, SIGUSR1);
            std::this_thread::yield();
        }
        EXPECT_EQ(m_clock.nextDeadline(), until);
        watched.signal();
    });

    EXPECT_EQ(watched.wait(until), 1);

    interrupter.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(ManualClockTest, NextDeadlineIsTheEarliest)
{
    const Watched watched;
    const Deadline late = after(20s);
    const Deadline early = after(10s);
    const std::jthread first([&] { watched.wait(late); });
    const std::jthread second([&] { watched.wait(early); });
    ASSERT_TRUE(m_clock.waitForSleepers(2));

    EXPECT_EQ(m_clock.nextDeadline(), early);
    m_clock.advance(10s);
    EXPECT_EQ(m_clock.nextDeadline(), late);
    m_clock.advance(10s);
}

TEST_F(ManualClockTest, WaitForSleepersIsBounded)
{
    EXPECT_FALSE(m_clock.waitForSleepers(1, milliseconds(1)));
}

TEST(ManualClockLifeTest, EndLetsSleepersGo)
{
    const Watched watched;
    AaSem* semaphore = AaSemCreateC(0);
    std::jthread onDescriptor;
    std::jthread onWord;
    {
        ManualClock clock;
        const Deadline until = clock.monotonic() + 10s;
        onDescriptor = std::jthread([&watched, until] { watched.wait(until); });
        onWord = std::jthread([semaphore] { AaSemTake(semaphore, 10'000'000); });
        ASSERT_TRUE(clock.waitForSleepers(2));
    }
    onDescriptor.join();
    onWord.join();
    AaSemDestroy(&semaphore);
}

TEST_F(ManualClockTest, NobodySleepsPastHisDeadlineHoweverThreadsRace)
{
    constexpr int rounds = 500;
    AaSem* semaphore = AaSemCreateC(0);
    std::vector<std::jthread> takers;
    std::latch done(4);
    for (int taker = 0; taker < 4; ++taker) {
        takers.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                AaSemTake(semaphore, 1000);
            }
            done.count_down();
        });
    }
    while (!done.try_wait()) {
        m_clock.advance(1ms);
        EXPECT_GT(m_clock.nextDeadline().value_or(noDeadline), m_clock.monotonic());
    }
    takers.clear();
    AaSemDestroy(&semaphore);
}

class ManualClockNodeTest : public NodeTest {};

TEST_F(ManualClockNodeTest, ReceiveTimeOutFollowsTheClock)
{
    ManualClock clock;
    int something = 0;
    void* message = &something;
    std::jthread receiver([&] { message = AaSysComMsgReceive(3'000'000); });
    ASSERT_TRUE(clock.waitForSleepers());

    clock.advance(3s);
    receiver.join();

    EXPECT_EQ(message, nullptr);
}

} // namespace
} // namespace dorn::testkit
