// SPDX-License-Identifier: MIT
#include "syscom/WaitSet.hpp"

#include "Bound.hpp"
#include "ManualClock.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <list>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace dorn::host::test {
namespace {

using namespace std::chrono_literals;
using testkit::ManualClock;

/// Is readable from raise() on until it is served.
class Flag : public WaitSource {
public:
    ~Flag() override { close(m_descriptor); }
    Flag() = default;
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

    int descriptor() const { return m_descriptor; }
    void raise() const { eventfd_write(m_descriptor, 1); }
    int served() const { return m_served.load(); }
    void onReadable() override
    {
        eventfd_t count = 0;
        eventfd_read(m_descriptor, &count);
        m_served.fetch_add(1);
        then();
    }

    std::function<void()> then = [] {};

private:
    int m_descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::atomic<int> m_served{0};
};

class WaitSetTest : public ::testing::Test {
protected:
    void add(Flag& flag) { m_set.add(flag.descriptor(), flag); }
    void remove(const Flag& flag)
    {
        const std::lock_guard lock(m_set.mutex());
        m_set.remove(flag.descriptor());
    }
    /// Waits until there is nothing to return for any more.
    void settle()
    {
        Deadline until{};
        do {
            until = Clock::get().monotonic() + 1ms;
            m_set.wait(until);
        } while (Clock::get().monotonic() < until);
    }

    WaitSet m_set;
    Flag m_flag;
};

/// Somebody waits already, until the clock is moved.
class WaitSetChangeTest : public WaitSetTest {
protected:
    void SetUp() override
    {
        add(m_flag);
        m_set.wait(Deadline(0));
        m_waiter = std::thread([this] {
            const Deadline until = m_clock.monotonic() + 10s;
            while (m_clock.monotonic() < until) {
                m_set.wait(until);
            }
        });
        ASSERT_TRUE(m_clock.waitForSleepers());
    }
    /// @return whether @p flag has been served within the bound.
    static bool raiseAndAwait(const Flag& flag)
    {
        flag.raise();
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        while (flag.served() == 0 && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        return flag.served() == 1;
    }
    void endWait()
    {
        m_clock.advance(10s);
        m_waiter.join();
    }

    ManualClock m_clock;
    std::thread m_waiter;
};

TEST_F(WaitSetTest, ReadableSourceIsServedOnceAndOthersAreNot)
{
    Flag other;
    add(other);
    add(m_flag);
    m_flag.raise();

    settle();

    EXPECT_EQ(m_flag.served(), 1);
    EXPECT_EQ(other.served(), 0);
}

TEST_F(WaitSetTest, OneWaitServesAllThatAreReadable)
{
    std::list<Flag> flags(100);
    for (Flag& flag : flags) {
        add(flag);
        flag.raise();
    }

    m_set.wait(Deadline(0));

    for (const Flag& flag : flags) {
        EXPECT_EQ(flag.served(), 1);
    }
}

TEST_F(WaitSetTest, EverySourceIsTheFirstInItsTurn)
{
    std::vector<int> firsts;
    std::list<Flag> flags(3);
    int number = 0;
    bool isFirst = false;
    for (Flag& flag : flags) {
        add(flag);
        flag.then = [&, own = number++] {
            if (std::exchange(isFirst, false)) {
                firsts.push_back(own);
            }
        };
    }
    for (int round = 0; round < 3; ++round) {
        for (const Flag& flag : flags) {
            flag.raise();
        }
        isFirst = true;
        m_set.wait(Deadline(0));
    }

    std::sort(firsts.begin(), firsts.end());
    EXPECT_EQ(firsts, (std::vector{0, 1, 2}));
}

TEST_F(WaitSetTest, SourceMayEndItselfWhileOthersAreServed)
{
    std::list<Flag> flags(5);
    for (Flag& flag : flags) {
        add(flag);
        flag.raise();
        flag.then = [&] { remove(flag); };
    }

    m_set.wait(Deadline(0));

    for (const Flag& flag : flags) {
        EXPECT_EQ(flag.served(), 1);
        flag.raise();
    }
    EXPECT_FALSE(m_set.hasSources());
    settle();
    EXPECT_EQ(flags.front().served(), 1);
}

TEST_F(WaitSetTest, HasSourcesWhileThereAreAny)
{
    EXPECT_FALSE(m_set.hasSources());
    Flag other;
    add(m_flag);
    add(other);
    EXPECT_TRUE(m_set.hasSources());
    remove(m_flag);
    EXPECT_TRUE(m_set.hasSources());
    remove(other);
    EXPECT_FALSE(m_set.hasSources());
    remove(other);
    EXPECT_FALSE(m_set.hasSources());
}

TEST_F(WaitSetTest, SourceThatWasServedLastIsServedUntilItIsRemoved)
{
    add(m_flag);
    m_set.serveLast();
    EXPECT_EQ(m_flag.served(), 0);
    m_flag.raise();
    m_set.wait(Deadline(0));

    m_set.serveLast();
    EXPECT_EQ(m_flag.served(), 2);

    remove(m_flag);
    m_set.serveLast();
    EXPECT_EQ(m_flag.served(), 2);
}

TEST_F(WaitSetTest, RingEndsOneWait)
{
    m_set.ring();
    m_set.ring();

    m_set.wait(noDeadline);

    const Deadline until = Clock::get().monotonic() + 5ms;
    m_set.wait(until);
    EXPECT_GE(Clock::get().monotonic(), until);
}

TEST_F(WaitSetTest, RingDoesNotHideWhatIsReadable)
{
    add(m_flag);
    settle();
    m_flag.raise();
    m_set.ring();

    m_set.wait(noDeadline);

    EXPECT_EQ(m_flag.served(), 1);
}

TEST_F(WaitSetTest, WaitForRingServesNothing)
{
    add(m_flag);
    m_flag.raise();
    const std::atomic<bool> isRung{false};
    std::thread ringer([this] { m_set.ring(); }); // nobody knows whether before the wait has begun
    m_set.waitForRing(Clock::get().monotonic() + 5ms, isRung);
    ringer.join();

    EXPECT_EQ(m_flag.served(), 0);
}

TEST_F(WaitSetTest, WaitForRingPassesOverAnOldRing)
{
    m_set.ring();
    const Deadline until = Clock::get().monotonic() + 5ms;

    m_set.waitForRing(until, std::atomic<bool>(false));

    EXPECT_GE(Clock::get().monotonic(), until);
    m_set.waitForRing(noDeadline, std::atomic<bool>(true));
}

TEST_F(WaitSetTest, MoreDescriptorsThanTheProcessMayHaveKeepNobodyBusy)
{
    ManualClock clock;
    add(m_flag);
    m_flag.raise();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit one = before;
    one.rlim_cur = 1;
    setrlimit(RLIMIT_NOFILE, &one);
    m_set.wait(noDeadline);
    setrlimit(RLIMIT_NOFILE, &before);

    std::thread waiter([&] { m_set.wait(noDeadline); });
    EXPECT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(m_flag.served(), 0);
    clock.advance(10ms);
    waiter.join();

    EXPECT_EQ(m_flag.served(), 1);
}

TEST_F(WaitSetChangeTest, SourceThatIsAddedIsServedByTheOneWhoWaits)
{
    Flag added;
    add(added);

    EXPECT_TRUE(raiseAndAwait(added));
    endWait();
}

TEST_F(WaitSetChangeTest, SourceThatIsRemovedIsNotServed)
{
    {
        const std::lock_guard lock(m_set.mutex()); // as its owner does who ends it
        m_flag.raise();
        m_set.remove(m_flag.descriptor());
    }
    endWait();

    EXPECT_EQ(m_flag.served(), 0);
}

/// What is waited for stays open although it has been closed.
TEST_F(WaitSetChangeTest, DescriptorThatIsRemovedCanBeClosed)
{
    class End : public WaitSource {
        void onReadable() override {}
    } end;
    std::array<int, 2> pipeEnds{};
    ASSERT_EQ(pipe(pipeEnds.data()), 0);
    m_set.add(pipeEnds[0], end);
    ASSERT_TRUE(raiseAndAwait(m_flag)); // only who knows of the change serves
    ASSERT_TRUE(m_clock.waitForSleepers());
    {
        const std::lock_guard lock(m_set.mutex());
        m_set.remove(pipeEnds[0]);
    }
    close(pipeEnds[0]);

    pollfd other{pipeEnds[1], 0, 0};
    EXPECT_EQ(poll(&other, 1, static_cast<int>(testkit::generousBound.count())), 1);

    EXPECT_EQ(other.revents, POLLERR);
    close(pipeEnds[1]);
    endWait();
}

} // namespace
} // namespace dorn::host::test
