// SPDX-License-Identifier: MIT
#include "config/SharedSignal.hpp"

#include "ChildProcess.hpp"
#include "WaitingClock.hpp"

#include <gtest/gtest.h>
#include <new>
#include <sys/mman.h>
#include <thread>

namespace {

using dorn::host::Clock;
using dorn::host::Deadline;
using dorn::host::noDeadline;
using dorn::host::SharedSignal;
using dorn::host::test::ChildProcess;
using dorn::host::test::WaitingClock;

/// A signal in memory that is shared with children.
class SharedSignalTest : public ::testing::Test {
protected:
    SharedSignalTest()
        : m_memory(mmap(nullptr, sizeof(SharedSignal), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
          m_signal(*new (m_memory) SharedSignal)
    {
        m_signal.reset();
    }
    ~SharedSignalTest() override { munmap(m_memory, sizeof(SharedSignal)); }

    void* m_memory;
    SharedSignal& m_signal;
};

TEST_F(SharedSignalTest, EveryNotificationCounts)
{
    const std::uint32_t before = m_signal.count();
    m_signal.notify();
    m_signal.notify();
    EXPECT_EQ(m_signal.count(), before + 2);
}

TEST_F(SharedSignalTest, WhoHasMissedANotificationDoesNotSleep)
{
    WaitingClock clock;
    const std::uint32_t seen = m_signal.count();
    m_signal.notify();
    EXPECT_TRUE(m_signal.waitBeyond(seen, noDeadline));
    EXPECT_EQ(clock.sleeps(), 0);
}

TEST_F(SharedSignalTest, WaitEndsAtItsDeadline)
{
    const Deadline until = Clock::get().after(1000);
    EXPECT_FALSE(m_signal.waitBeyond(m_signal.count(), until));
    EXPECT_GE(Clock::get().monotonic(), until);
}

TEST_F(SharedSignalTest, NotificationWakesEveryWaiter)
{
    WaitingClock clock;
    const std::uint32_t seen = m_signal.count();
    std::thread one([&] { EXPECT_TRUE(m_signal.waitBeyond(seen, Clock::get().after(20'000'000))); });
    std::thread two([&] { EXPECT_TRUE(m_signal.waitBeyond(seen, Clock::get().after(20'000'000))); });
    clock.awaitSleepAfter(0);
    m_signal.notify();
    one.join();
    two.join();
}

TEST_F(SharedSignalTest, NotificationWakesAnotherProcess)
{
    const std::uint32_t seen = m_signal.count();
    ChildProcess child([&](ChildProcess::Parent& parent) {
        WaitingClock clock;
        std::thread waiter([&] { EXPECT_TRUE(m_signal.waitBeyond(seen, Clock::get().after(20'000'000))); });
        clock.awaitSleepAfter(0);
        parent.tell();
        waiter.join();
    });
    ASSERT_TRUE(child.await());
    m_signal.notify();
    EXPECT_TRUE(child.hasSucceeded());
}

TEST_F(SharedSignalTest, KilledWaiterLeavesNothingThatMatters)
{
    const std::uint32_t seen = m_signal.count();
    {
        ChildProcess child([&](ChildProcess::Parent& parent) {
            WaitingClock clock;
            std::thread waiter([&] { m_signal.waitBeyond(seen, noDeadline); });
            clock.awaitSleepAfter(0);
            parent.tell();
            waiter.join();
        });
        ASSERT_TRUE(child.await());
    }
    m_signal.notify();
    EXPECT_EQ(m_signal.count(), seen + 1);
    EXPECT_TRUE(m_signal.waitBeyond(seen, noDeadline));
}

} // namespace
