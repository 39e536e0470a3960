// SPDX-License-Identifier: MIT
// Event dispatchers on the host's platform, with real descriptors.
#include "EventDispatcher.hpp"

#include "AaSem.h"
#include "AaSysCom.h"
#include "Bound.hpp"
#include "FailNth.hpp"
#include "LogCapture.hpp"
#include "TestNode.hpp"
#include "eu/Eu.hpp"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

/// A dispatcher leaves its semaphores behind, so tests that end one do.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:EventDispatcher::EventDispatcher";
}

namespace vel::hwapi::common {
namespace {

using dorn::testkit::CountCalls;
using dorn::testkit::FailNth;
using dorn::testkit::generousBound;
using dorn::testkit::LogCapture;
using dorn::testkit::TestNode;
using testing::IsEmpty;

constexpr ERadHwapi radId = ERadHwapi_PrintCtrlTask;

/// A pipe that ends with its object; each end may be closed before.
class Pipe {
public:
    Pipe()
    {
        if (pipe(m_ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
    }
    ~Pipe()
    {
        closeReader();
        closeWriter();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reader() const { return m_ends[0]; }
    void write() const { EXPECT_EQ(::write(m_ends[1], "x", 1), 1); }
    void read() const
    {
        char byte = 0;
        EXPECT_EQ(::read(m_ends[0], &byte, 1), 1);
    }
    void closeReader() { closeEnd(m_ends[0]); }
    void closeWriter() { closeEnd(m_ends[1]); }

private:
    static void closeEnd(int& end)
    {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }
    std::array<int, 2> m_ends{-1, -1};
};

/// Does what the test says and counts.
class Handler : public EventHandler {
public:
    explicit Handler(std::function<void(int)> onEvent) : m_onEvent(std::move(onEvent)) {}
    void HandleEvent(int fd) override
    {
        m_onEvent(fd);
        const std::lock_guard lock(m_mutex);
        ++m_count;
        m_changed.notify_all();
    }
    int count()
    {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }
    [[nodiscard]] bool waitForCount(int count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, generousBound, [&] { return m_count >= count; });
    }

private:
    std::function<void(int)> m_onEvent;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
};

std::size_t countThreads()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

class EventDispatcherHostTest : public testing::Test {
protected:
    EventDispatcherHostTest() { m_dispatcher.RegisterEventHandler(m_syncPipe.reader(), m_syncHandler, POLLIN); }

    /// An EU logs a line after Stop() has returned. No test ends before it has.
    ~EventDispatcherHostTest() override
    {
        m_dispatcher.Stop();
        const auto until = std::chrono::steady_clock::now() + generousBound;
        while (countThreads() > m_threads && std::chrono::steady_clock::now() < until) {
            std::this_thread::yield();
        }
        EXPECT_LE(countThreads(), m_threads);
        // Takes the lock that the EU took last, so that all it did was before what follows.
        dorn::host::eus::release(*dorn::host::eus::acquire("last"));
    }

    void setup(const std::string& name = "Events") { m_dispatcher.Setup(radId, name, 5, 4096); }
    /// Lets the dispatcher take over all changes made so far, and go through a round after that.
    void sync()
    {
        const int before = m_syncHandler.count();
        for (int round = 0; round < 3; ++round) { // each byte is a round, and the first one may be under way
            m_syncPipe.write();
        }
        ASSERT_TRUE(m_syncHandler.waitForCount(before + 3));
    }

    /// Those there are without the dispatcher; with the first thread a sanitizer gets one of its own.
    static std::size_t countOtherThreads()
    {
        std::thread([] {}).join();
        return countThreads();
    }

    const std::size_t m_threads = countOtherThreads();
    TestNode m_node{{.logLevel = "debug"}};
    LogCapture m_log;
    Pipe m_syncPipe;
    Handler m_syncHandler{[this](int) { m_syncPipe.read(); }};
    EventDispatcher m_dispatcher;
};

TEST_F(EventDispatcherHostTest, ReadableDescriptorCallsItsHandlerOnTheDispatchersEu)
{
    Pipe pipe;
    std::array<char, 16> name{};
    int handled = -1;
    Handler handler([&](int fd) {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        handled = fd;
        pipe.read();
    });
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    setup();

    pipe.write();

    ASSERT_TRUE(handler.waitForCount(1));
    m_dispatcher.Stop();
    EXPECT_EQ(handled, pipe.reader());
    EXPECT_STREQ(name.data(), "Events");
    EXPECT_EQ(handler.count(), 1);
}

TEST_F(EventDispatcherHostTest, DescriptorIsRegisteredWhileTheDispatcherWaits)
{
    setup();
    sync();
    Pipe pipe;
    Handler handler([&](int) { pipe.read(); });
    pipe.write();

    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);

    EXPECT_TRUE(handler.waitForCount(1));
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, HandlerThatDoesNotReadIsCalledAgain)
{
    Pipe pipe;
    Handler handler([](int) {});
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    setup();

    pipe.write();

    EXPECT_TRUE(handler.waitForCount(3));
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, HangUpAloneCallsNoHandlerAndTheDispatcherGoesOn)
{
    Pipe hungUp;
    hungUp.closeWriter();
    Handler handler([](int) {});
    m_dispatcher.RegisterEventHandler(hungUp.reader(), handler, POLLIN);
    setup();

    sync();
    sync();

    EXPECT_EQ(handler.count(), 0);
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, ClosedDescriptorCallsNoHandlerAndTheDispatcherGoesOn)
{
    Pipe pipe;
    Handler handler([](int) {});
    const int closed = pipe.reader();
    m_dispatcher.RegisterEventHandler(closed, handler, POLLIN);
    setup();
    sync();

    pipe.closeReader();
    sync();

    EXPECT_EQ(handler.count(), 0);
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, HandlerMayUnregisterAndCloseItsDescriptor)
{
    Pipe pipe;
    Handler handler([&](int fd) {
        m_dispatcher.UnregisterEventHandler(fd);
        pipe.closeReader();
    });
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    setup();
    pipe.write();
    ASSERT_TRUE(handler.waitForCount(1));

    sync();

    m_dispatcher.Stop();
    EXPECT_EQ(handler.count(), 1);
}

TEST_F(EventDispatcherHostTest, OfHandlersThatUnregisterEachOtherTheFirstIsCalled)
{
    Pipe left;
    Pipe right;
    Handler leftHandler([&](int) { m_dispatcher.UnregisterEventHandler(right.reader()); });
    Handler rightHandler([&](int) { m_dispatcher.UnregisterEventHandler(left.reader()); });
    left.write();
    right.write();
    m_dispatcher.RegisterEventHandler(left.reader(), leftHandler, POLLIN);
    m_dispatcher.RegisterEventHandler(right.reader(), rightHandler, POLLIN);

    setup();

    ASSERT_TRUE(leftHandler.waitForCount(2));
    m_dispatcher.Stop();
    EXPECT_EQ(rightHandler.count(), 0);
}

TEST_F(EventDispatcherHostTest, HandlerThatThrowsIsLoggedAndOthersAreCalled)
{
    Pipe bad;
    Pipe good;
    Handler badHandler([&](int) {
        bad.read();
        throw std::runtime_error("broken");
    });
    Handler goodHandler([&](int) { good.read(); });
    m_dispatcher.RegisterEventHandler(bad.reader(), badHandler, POLLIN);
    m_dispatcher.RegisterEventHandler(good.reader(), goodHandler, POLLIN);
    setup();

    bad.write();
    const std::string line =
        "Error 0x20000 Event Handler Events - HandleEvent(" + std::to_string(bad.reader()) + ") failed: broken";
    ASSERT_TRUE(m_log.waitFor(line));
    good.write();

    EXPECT_TRUE(goodHandler.waitForCount(1));
    m_dispatcher.Stop();
    EXPECT_EQ(m_log.count(line), 1U);
}

TEST_F(EventDispatcherHostTest, FailedPollIsLoggedAndTheDispatcherRecovers)
{
    Pipe pipe;
    Handler handler([&](int) { pipe.read(); });
    for (int count = 0; count < 40; ++count) { // more entries than descriptors are allowed
        m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    }
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit tight{20, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);

    setup();
    EXPECT_TRUE(m_log.waitFor("Error 0x20000 Event Handler Events - poll() failed"));

    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    for (int count = 0; count < 40; ++count) {
        m_dispatcher.UnregisterEventHandler(pipe.reader());
    }
    sync();
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, StopEndsTheEuAndStartBeginsAnew)
{
    Pipe pipe;
    Handler handler([&](int) { pipe.read(); });
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    setup();

    m_dispatcher.Stop();
    EXPECT_TRUE(m_log.waitFor("Info 0x20000 Event Dispatcher Events finished polling"));
    m_dispatcher.Start();
    pipe.write();

    EXPECT_TRUE(handler.waitForCount(1));
    EXPECT_EQ(m_log.count("Info 0x20000 Starting Event Dispatcher Events"), 2U);
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, SetupOfARunningOneRestartsItWithTheNewName)
{
    setup("First");
    sync();

    setup("Second");

    Pipe pipe;
    std::array<char, 16> name{};
    Handler handler([&](int) {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        pipe.read();
    });
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    pipe.write();
    ASSERT_TRUE(handler.waitForCount(1));
    m_dispatcher.Stop();
    EXPECT_STREQ(name.data(), "Second");
    EXPECT_TRUE(m_log.waitFor("Info 0x20000 Event Dispatcher First finished polling"));
    EXPECT_TRUE(m_log.waitFor("Info 0x20000 Event Dispatcher Second finished polling"));
}

TEST_F(EventDispatcherHostTest, StopOfOneThatNeverRanReturnsAtOnce)
{
    EventDispatcher idle;

    idle.Stop();
    idle.Stop();

    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST_F(EventDispatcherHostTest, EuThatCannotBeCreatedBlocksNobody)
{
    {
        const FailNth<AaSysComEuCreateAndStart> noEu(1);
        setup();
        EXPECT_TRUE(noEu.hasFailed());
    }
    m_dispatcher.Stop();

    m_dispatcher.Start();

    sync();
    m_dispatcher.Stop();
}

TEST_F(EventDispatcherHostTest, EndedDispatcherStopsItsEuAndLeavesItsSemaphores)
{
    Pipe pipe;
    Handler handler([](int) {});
    const CountCalls<AaSemDestroy> destroyed;
    {
        EventDispatcher shortLived;
        shortLived.RegisterEventHandler(pipe.reader(), handler, POLLIN);
        shortLived.Setup(radId, "Brief", 5, 4096);
    }

    EXPECT_TRUE(m_log.waitFor("Info 0x20000 Event Dispatcher Brief finished polling"));
    EXPECT_EQ(destroyed.count(), 0U);
}

TEST_F(EventDispatcherHostTest, NoHandlerRunsWhileTheSafeSemaphoreIsHeld)
{
    Pipe pipe;
    std::atomic<bool> isHeld{false};
    std::atomic<bool> hasIntruded{false};
    Handler handler([&](int) { hasIntruded = hasIntruded || isHeld; }); // called again and again
    m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
    pipe.write();
    setup();
    for (int round = 0; round < 50; ++round) {
        ASSERT_TRUE(handler.waitForCount(handler.count() + 1));
        m_dispatcher.WaitSafeSem();
        isHeld = true;
        std::this_thread::yield();
        isHeld = false;
        m_dispatcher.PostSafeSem();
    }
    m_dispatcher.Stop();

    EXPECT_FALSE(hasIntruded);
}

TEST_F(EventDispatcherHostTest, UnregisteredHandlerMayBeDestroyedAfterTheSafeSemaphore)
{
    setup();
    for (int round = 0; round < 100; ++round) {
        Pipe pipe;
        auto handler = std::make_unique<Handler>([](int) {}); // called again and again
        m_dispatcher.RegisterEventHandler(pipe.reader(), *handler, POLLIN);
        pipe.write();
        sync();
        ASSERT_TRUE(handler->waitForCount(1));

        m_dispatcher.UnregisterEventHandler(pipe.reader());
        m_dispatcher.WaitSafeSem();
        m_dispatcher.PostSafeSem();
        handler.reset(); // a call after this is found by the sanitizers
        sync();          // the next pipe has the same descriptor
    }
    m_dispatcher.Stop();
}

/// What threads do to one dispatcher whose handlers must run one at a time.
class Turmoil {
public:
    explicit Turmoil(EventDispatcher& dispatcher) : m_dispatcher(dispatcher) {}

    /// Is called by every handler.
    void passThrough(const std::function<void()>& work = [] {})
    {
        m_hasOverlapped = m_hasOverlapped || m_running.fetch_add(1) != 0;
        work();
        m_running.fetch_sub(1);
    }
    bool hasOverlapped() const { return m_hasOverlapped; }

    /// Registers, raises, unregisters and closes. Some handlers throw, some change registrations themselves.
    void churn(unsigned seed)
    {
        std::minstd_rand random(seed);
        for (int round = 0; round < 50; ++round) {
            Pipe pipe;
            Handler handler([this, choice = random() % 3](int fd) {
                passThrough();
                if (choice == 0) {
                    m_dispatcher.UnregisterEventHandler(fd);
                } else if (choice == 1) {
                    throw std::runtime_error("on purpose");
                }
            });
            m_dispatcher.RegisterEventHandler(pipe.reader(), handler, POLLIN);
            pipe.write();
            if (random() % 2 == 0) {
                std::this_thread::yield();
            }
            m_dispatcher.UnregisterEventHandler(pipe.reader());
            m_dispatcher.WaitSafeSem();
            m_dispatcher.PostSafeSem();
        }
    }

    void holdHandlersUp(const std::atomic<bool>& isOver)
    {
        while (!isOver) {
            m_dispatcher.WaitSafeSem();
            m_dispatcher.PostSafeSem();
            std::this_thread::yield();
        }
    }

    void restart()
    {
        for (int round = 0; round < 3; ++round) {
            m_dispatcher.Setup(radId, "Again", 5, 4096);
        }
    }

private:
    EventDispatcher& m_dispatcher;
    std::atomic<int> m_running{0};
    std::atomic<bool> m_hasOverlapped{false};
};

TEST_F(EventDispatcherHostTest, NothingGoesWrongWhenEverythingHappensAtOnce)
{
    setup();
    Turmoil turmoil(m_dispatcher);
    Pipe steadyPipe;
    Handler steady([&](int) { turmoil.passThrough([&] { steadyPipe.read(); }); });
    m_dispatcher.RegisterEventHandler(steadyPipe.reader(), steady, POLLIN);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        threads.emplace_back([&turmoil, seed] { turmoil.churn(seed); });
    }
    threads.emplace_back([&] { turmoil.restart(); });
    std::thread holder([&] { turmoil.holdHandlersUp(isOver); });

    constexpr int events = 100;
    for (int count = 1; count <= events; ++count) {
        steadyPipe.write();
    }
    EXPECT_TRUE(steady.waitForCount(events));
    for (std::thread& thread : threads) {
        thread.join();
    }
    isOver = true;
    holder.join();
    m_dispatcher.Stop();

    EXPECT_EQ(steady.count(), events);
    EXPECT_FALSE(turmoil.hasOverlapped());
}

} // namespace
} // namespace vel::hwapi::common
