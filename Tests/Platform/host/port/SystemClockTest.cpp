// SPDX-License-Identifier: MIT
// The waits of the real clock: none ends late for want of a wake-up, and none of those with a limit early without one.
#include "Sanitizers.hpp"
#include "config/ChildProcess.hpp"
#include "port/Clock.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <gtest/gtest.h>
#include <new>
#include <poll.h>
#include <pthread.h>
#include <span>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace dorn::host::test {
namespace {

using namespace std::chrono_literals;

/// A descriptor that is readable once it has been rung.
class Bell {
public:
    ~Bell() { close(m_bell); }
    Bell() = default;
    Bell(const Bell&) = delete;
    Bell& operator=(const Bell&) = delete;

    int descriptor() const { return m_bell; }
    void ring() const { eventfd_write(m_bell, 1); }

private:
    int m_bell = eventfd(0, EFD_CLOEXEC);
};

class SystemClockTest : public ::testing::Test {
protected:
    Deadline in(Nanoseconds time) const { return m_clock.monotonic() + time; }
    /// Waits until one of the bells is readable.
    int waitForBells(Deadline until)
    {
        for (pollfd& entry : m_entries) {
            entry.revents = 0;
        }
        return m_clock.waitDescriptors(m_entries, until);
    }

    Clock& m_clock = Clock::get();
    Bell m_bell;
    Bell m_other;
    std::array<pollfd, 2> m_entries{pollfd{m_bell.descriptor(), POLLIN, 0}, pollfd{m_other.descriptor(), POLLIN, 0}};
    std::atomic<std::uint32_t> m_word{0};
};

TEST_F(SystemClockTest, MonotonicTimeNeverStepsBack)
{
    Nanoseconds before = m_clock.monotonic();
    for (int count = 0; count < 10000; ++count) {
        const Nanoseconds now = m_clock.monotonic();
        ASSERT_GE(now, before);
        before = now;
    }
}

TEST_F(SystemClockTest, WallTimeIsTheSystems)
{
    const auto system = std::chrono::system_clock::now().time_since_epoch();

    EXPECT_LT(m_clock.wall() - system, 10s);
    EXPECT_GE(m_clock.wall(), system);
}

TEST_F(SystemClockTest, DeadlineLiesTheTimeOutAhead)
{
    const Nanoseconds before = m_clock.monotonic();
    const Deadline deadline = m_clock.after(1500);

    EXPECT_GE(deadline, before + 1500us);
    EXPECT_LE(deadline, m_clock.monotonic() + 1500us);
}

TEST_F(SystemClockTest, TimeOutOfZeroEndsNow)
{
    const Nanoseconds before = m_clock.monotonic();
    const Deadline deadline = m_clock.after(0);

    EXPECT_GE(deadline, before);
    EXPECT_LE(deadline, m_clock.monotonic());
}

TEST_F(SystemClockTest, NegativeTimeOutHasNoDeadline)
{
    EXPECT_EQ(m_clock.after(-1), noDeadline);
    EXPECT_EQ(m_clock.after(INT64_MIN), noDeadline);
}

TEST_F(SystemClockTest, TimeOutBeyondTheScaleHasNoDeadline)
{
    EXPECT_EQ(m_clock.after(INT64_MAX), noDeadline);
    EXPECT_EQ(m_clock.after(INT64_MAX / 1000), noDeadline);
    EXPECT_LT(m_clock.after(INT64_MAX / 2000), noDeadline);
}

TEST_F(SystemClockTest, WaitOnAWordEndsAtItsDeadline)
{
    const Deadline until = in(5ms);
    while (m_clock.monotonic() < until) {
        m_clock.waitWhile(m_word, 0, until, false); // may return early; a lost deadline would hang
    }
}

TEST_F(SystemClockTest, WaitOnAWordThatHasChangedDoesNotSleep)
{
    m_clock.waitWhile(m_word, 1, noDeadline, false);
    m_clock.waitWhile(m_word, 1, noDeadline, true);
}

TEST_F(SystemClockTest, WakeUpEndsTheWaitOnAWord)
{
    std::thread sleeper([this] {
        while (m_word.load() == 0) {
            m_clock.waitWhile(m_word, 0, noDeadline, false);
        }
    });
    m_word.store(1);
    wakeWaiters(m_word, 1, false);
    sleeper.join();
}

TEST_F(SystemClockTest, WakeUpReachesTheWaitOfAnotherProcess)
{
    void* const memory =
        mmap(nullptr, sizeof(std::atomic<std::uint32_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto& word = *new (memory) std::atomic<std::uint32_t>(0);
    ChildProcess child([&](ChildProcess::Parent& parent) {
        parent.tell();
        while (word.load() == 0) {
            Clock::get().waitWhile(word, 0, noDeadline, true);
        }
    });
    ASSERT_TRUE(child.await());
    word.store(1);
    wakeWaiters(word, 1, true);

    EXPECT_TRUE(child.hasSucceeded());
    munmap(memory, sizeof(std::atomic<std::uint32_t>));
}

TEST_F(SystemClockTest, WaitForDescriptorsEndsAtItsDeadlineAndNotBefore)
{
    for (const Nanoseconds time : {Nanoseconds(1), Nanoseconds(50us), Nanoseconds(5ms)}) {
        const Deadline until = in(time);

        EXPECT_EQ(waitForBells(until), 0);

        EXPECT_GE(m_clock.monotonic(), until);
    }
}

TEST_F(SystemClockTest, WaitForDescriptorsEndsWhenOneIsReadyAndTellsWhich)
{
    m_other.ring();

    for (const Deadline until : {Deadline(0), in(20s), noDeadline}) {
        EXPECT_EQ(waitForBells(until), 1);
        EXPECT_EQ(m_entries[0].revents, 0);
        EXPECT_EQ(m_entries[1].revents, POLLIN);
    }
}

TEST_F(SystemClockTest, WaitForDescriptorsTellsOfAllThatAreReady)
{
    m_bell.ring();
    m_other.ring();

    EXPECT_EQ(waitForBells(noDeadline), 2);

    EXPECT_EQ(m_entries[0].revents, POLLIN);
    EXPECT_EQ(m_entries[1].revents, POLLIN);
}

TEST_F(SystemClockTest, WaitForNoDescriptorEndsAtItsDeadlineAndNotBefore)
{
    const Deadline until = in(5ms);

    EXPECT_EQ(m_clock.waitDescriptors({}, until), 0);
    EXPECT_GE(m_clock.monotonic(), until);

    m_bell.ring();
    m_entries[0].fd = -1;
    EXPECT_EQ(waitForBells(Deadline(0)), 0);
}

TEST_F(SystemClockTest, WaitForMoreDescriptorsThanTheProcessMayHaveFailsAtOnce)
{
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit one = before;
    one.rlim_cur = 1;
    setrlimit(RLIMIT_NOFILE, &one);

    errno = 0;
    EXPECT_EQ(waitForBells(noDeadline), -1);

    EXPECT_EQ(errno, EINVAL);
    setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(SystemClockTest, DescriptorThatBecomesReadyEndsTheWait)
{
    std::thread ringer([this] { m_other.ring(); });

    EXPECT_EQ(waitForBells(noDeadline), 1);

    ringer.join();
}

TEST_F(SystemClockTest, PastDeadlineOnlyLooks)
{
    EXPECT_EQ(waitForBells(Deadline(0)), 0);
    EXPECT_EQ(waitForBells(in(-1s)), 0);
    EXPECT_FALSE(m_clock.waitDescriptor(m_bell.descriptor(), POLLIN, Deadline(0)));
    m_clock.waitWhile(m_word, 0, in(-1s), false);
}

TEST_F(SystemClockTest, WaitForADescriptorEndsAtItsDeadlineAndNotBefore)
{
    const Deadline until = in(5ms);

    EXPECT_FALSE(m_clock.waitDescriptor(m_bell.descriptor(), POLLIN, until));

    EXPECT_GE(m_clock.monotonic(), until);
}

TEST_F(SystemClockTest, WaitForADescriptorEndsWhenItIsReady)
{
    EXPECT_TRUE(m_clock.waitDescriptor(m_bell.descriptor(), POLLOUT, noDeadline));
    m_bell.ring();
    EXPECT_TRUE(m_clock.waitDescriptor(m_bell.descriptor(), POLLIN, in(20s)));
}

TEST_F(SystemClockTest, WaitForADescriptorEndsWhenItsOtherEndHasGone)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[1]);

    EXPECT_TRUE(m_clock.waitDescriptor(ends[0], POLLIN, noDeadline));

    close(ends[0]);
}

/// Handles SIGUSR1 as long as it lives.
class SignalHandler {
public:
    explicit SignalHandler(void (*handler)(int))
    {
        struct sigaction action {};
        action.sa_handler = handler;
        sigaction(SIGUSR1, &action, &m_before);
    }
    ~SignalHandler() { sigaction(SIGUSR1, &m_before, nullptr); }
    SignalHandler(const SignalHandler&) = delete;
    SignalHandler& operator=(const SignalHandler&) = delete;

private:
    struct sigaction m_before {};
};

TEST_F(SystemClockTest, SignalDoesNotEndAWaitForDescriptors)
{
    static std::atomic<int> signals{0};
    signals.store(0);
    const SignalHandler handler([](int) { signals.fetch_add(1); });
    std::thread interrupter([this, self = pthread_self()] {
        while (signals.load() < 200) { // more than can come before the wait has begun
            pthread_kill(self, SIGUSR1);
            std::this_thread::yield();
        }
        m_bell.ring();
    });

    EXPECT_EQ(waitForBells(noDeadline), 1);

    interrupter.join();
}

TEST_F(SystemClockTest, SignalDoesNotProlongAWaitForDescriptors)
{
    const SignalHandler handler([](int) {});
    std::atomic<bool> isOver{false};
    std::thread interrupter([&, self = pthread_self()] {
        while (!isOver.load()) {
            pthread_kill(self, SIGUSR1);
            std::this_thread::yield();
        }
    });
    const Deadline until = in(5ms);

    EXPECT_EQ(waitForBells(until), 0);

    EXPECT_GE(m_clock.monotonic(), until);
    isOver.store(true);
    interrupter.join();
}

TEST_F(SystemClockTest, SignalHandlerMayWakeWaiters)
{
    static std::atomic<std::uint32_t> word{0};
    word.store(0);
    const SignalHandler handler([](int) {
        word.store(1);
        wakeWaiters(word, 1, false);
    });
    std::thread sleeper([this] {
        while (word.load() == 0) {
            m_clock.waitWhile(word, 0, noDeadline, false);
        }
    });

    raise(SIGUSR1);

    sleeper.join();
}

/// Waits in a thread that is cancelled. @return whether it unwound.
template <class Wait>
bool unwinds(const Wait& wait)
{
    struct Scope {
        std::atomic<bool>& hasLeft;
        ~Scope() { hasLeft.store(true); }
    };
    std::atomic<bool> hasLeft{false};
    std::atomic<bool> isThere{false};
    std::thread thread([&] {
        const Scope scope{hasLeft};
        isThere.store(true);
        for (;;) {
            wait();
        }
    });
    while (!isThere.load()) {
        std::this_thread::yield();
    }
    pthread_cancel(thread.native_handle());
    thread.join();
    return hasLeft.load();
}

TEST_F(SystemClockTest, ThreadThatIsCancelledInAWaitUnwinds)
{
    if (dorn::test::hasAddressSanitizer) {
        GTEST_SKIP() << dorn::test::unwindingIsNotKnown;
    }
    EXPECT_TRUE(unwinds([this] { m_clock.waitWhile(m_word, 0, noDeadline, false); }));
    EXPECT_TRUE(unwinds([this] { m_clock.waitWhile(m_word, 0, in(60s), false); }));
    EXPECT_TRUE(unwinds([this] { waitForBells(noDeadline); }));
    EXPECT_TRUE(unwinds([this] { waitForBells(in(60s)); }));
    EXPECT_TRUE(unwinds([this] { m_clock.waitDescriptor(m_bell.descriptor(), POLLIN, noDeadline); }));
}

/// Tells its own time.
class OtherClock : public Clock {
public:
    Nanoseconds monotonic() const override { return 1ns; }
    Nanoseconds wall() const override { return 2ns; }
    void waitWhile(std::atomic<std::uint32_t>&, std::uint32_t, Deadline, bool) override {}
    int waitDescriptors(std::span<pollfd>, Deadline) override { return 0; }
};

TEST_F(SystemClockTest, AnotherClockIsUsedWithinItsScope)
{
    OtherClock other;
    {
        const ClockScope scope(other);
        EXPECT_EQ(&Clock::get(), &other);
        OtherClock inner;
        {
            const ClockScope innerScope(inner);
            EXPECT_EQ(&Clock::get(), &inner);
        }
        EXPECT_EQ(&Clock::get(), &other);
    }
    EXPECT_EQ(&Clock::get(), &m_clock);
}

} // namespace
} // namespace dorn::host::test
