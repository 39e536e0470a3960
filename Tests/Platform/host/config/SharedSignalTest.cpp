// SPDX-License-Identifier: MIT
#include "config/SharedSignal.hpp"

#include "ChildProcess.hpp"
#include "WaitingClock.hpp"

#include <array>
#include <csignal>
#include <cstdarg>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <linux/futex.h>
#include <new>
#include <string>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

/// Has this process killed where it would wake somebody.
bool isKilledAtWake = false;

bool isWake(long number, long operation)
{
    const long command = operation & FUTEX_CMD_MASK;
    return number == SYS_futex && (command == FUTEX_WAKE || command == FUTEX_WAKE_OP);
}

} // namespace

// In place of the C library's, which it calls.
extern "C" long syscall(long number, ...) noexcept // NOLINT
{
    static const auto real = reinterpret_cast<long (*)(long, ...)>(dlsym(RTLD_NEXT, "syscall"));
    std::array<long, 6> words{};
    va_list arguments;
    va_start(arguments, number);
    for (long& word : words) {
        word = va_arg(arguments, long);
    }
    va_end(arguments);
    if (isKilledAtWake && isWake(number, words[1])) {
        raise(SIGKILL);
    }
    return real(number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

namespace {

using dorn::host::Clock;
using dorn::host::Deadline;
using dorn::host::noDeadline;
using dorn::host::SharedSignal;
using dorn::host::test::ChildProcess;
using dorn::host::test::WaitingClock;

/// Waits until all threads of a process sleep. @return whether they do so within 20 s.
bool isAsleep(pid_t pid)
{
    const Deadline until = Clock::get().after(20'000'000);
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(pid) + "/task");
    for (const auto& thread : threads) {
        for (std::string state; state != "S";) {
            if (Clock::get().monotonic() >= until) {
                return false;
            }
            std::ifstream stat(thread.path() / "stat");
            stat.ignore(std::numeric_limits<std::streamsize>::max(), ')') >> state;
        }
    }
    return true;
}

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

TEST_F(SharedSignalTest, WhoIsKilledAtTheWakeLeavesItToTheNextNotification)
{
    const std::uint32_t seen = m_signal.count();
    ChildProcess killed([&](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        isKilledAtWake = true;
        m_signal.notify();
    });
    ChildProcess waiter([&](ChildProcess::Parent& parent) {
        WaitingClock clock;
        std::uint32_t now = seen;
        std::thread reader([&] {
            while (now != seen + 2 && m_signal.waitBeyond(now, noDeadline)) {
                now = m_signal.count();
            }
            parent.tell();
        });
        clock.awaitSleepAfter(0);
        parent.tell();
        reader.join();
    });
    ASSERT_TRUE(waiter.await());
    ASSERT_TRUE(isAsleep(waiter.pid()));

    killed.tell();
    EXPECT_FALSE(killed.hasSucceeded());
    EXPECT_EQ(m_signal.count(), seen + 1);

    m_signal.notify();
    EXPECT_TRUE(waiter.await());
}

TEST_F(SharedSignalTest, NotificationWithoutWaitersMakesNoSystemCall)
{
    ChildProcess child([&](ChildProcess::Parent&) {
        isKilledAtWake = true;
        m_signal.notify();
    });
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
