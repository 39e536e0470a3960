// SPDX-License-Identifier: MIT
// Boundary interfaces on the host's platform: real threads, a real log.
#include "Gauge.hpp"

#include "AaSysCom.h"
#include "FailNth.hpp"
#include "Moment.hpp"
#include "NodeTest.hpp"
#include "Worker.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <deque>
#include <memory>
#include <numeric>
#include <pthread.h>
#include <thread>
#include <vector>

namespace {

using namespace dorn::test;
using dorn::testkit::CountCalls;
using testing::ElementsAre;
using vel::hwapi::common::Worker;

/// An interface that has run a thread is not destroyed: the thread goes on using its worker. Here are those of all
/// tests, until the process ends.
Gauge& leaveBehind(Gauge* gauge)
{
    static auto* const all = new std::deque<Gauge*>;
    all->push_back(gauge);
    return *gauge;
}

/// A worker that several interfaces share.
Worker& sharedWorker()
{
    static Worker* const worker = Worker::Get(0xB1F);
    return *worker;
}

std::vector<int> countUpTo(int end, int begin = 0)
{
    std::vector<int> numbers(static_cast<std::size_t>(end - begin));
    std::iota(numbers.begin(), numbers.end(), begin);
    return numbers;
}

class BifHostTest : public dorn::testkit::NodeTest {
protected:
    /// Registers a callback that notes what it gets.
    void observe(Gauge& gauge) { gauge.addCallback(Gauge::HIGH, &m_noting); }

    /// Waits until everything is delivered that @p gauge has raised so far.
    static void raiseLast(Gauge& gauge)
    {
        Moment last;
        OnReading callback([&](Reading&) { last.come(); });
        Reading reading;
        gauge.callEventAsynchronously(callback, reading);
        ASSERT_TRUE(last.waitFor());
    }
    /// Same, and until its worker touches nothing any more.
    static void finish(Gauge& gauge, AbstractWorker& worker)
    {
        raiseLast(gauge);
        worker.SuspendAndWaitWorkToComplete();
        worker.ResumeWorking();
    }

    std::vector<int> m_values; ///< touched by the event worker only, until finish()
    OnReading m_noting{[this](Reading& reading) { m_values.push_back(reading.getValue()); }};
};

/// Same, for an interface that delivers with a worker of its own.
class OwnWorkerTest : public BifHostTest {
protected:
    OwnWorkerTest() { observe(m_gauge); }

    void finish() { raiseLast(m_gauge); }

    Gauge& m_gauge = leaveBehind(new Gauge);
};

TEST_F(OwnWorkerTest, EventsRunOnTheThreadOfTheInterface)
{
    std::array<char, 16> name{};
    std::thread::id thread;
    OnReading callback([&](Reading& reading) {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        thread = std::this_thread::get_id();
        reading.setValue(7);
    });
    m_gauge.addCallback(Gauge::LOW, &callback);
    m_gauge.initialize();
    Reading reading(5);

    m_gauge.callCallback(Gauge::LOW, reading);
    finish();

    EXPECT_STREQ(name.data(), "BoundaryIf");
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(reading.getValue(), 5);
}

TEST_F(OwnWorkerTest, SecondInitializationStartsNoSecondThread)
{
    const CountCalls<AaSysComEuCreateAndStartWithPolicy> threads;

    m_gauge.initialize();
    m_gauge.initialize();

    EXPECT_EQ(threads.count(), 1U);
    m_gauge.raise(Gauge::HIGH, Reading(1));
    finish();
    EXPECT_THAT(m_values, ElementsAre(1));
}

TEST_F(OwnWorkerTest, EventsRaisedBeforeInitializationAreNotQueued)
{
    m_gauge.raise(Gauge::HIGH, Reading(1));
    EXPECT_THAT(m_values, ElementsAre(1));

    m_gauge.initialize();
    m_gauge.raise(Gauge::HIGH, Reading(2));
    finish();

    EXPECT_THAT(m_values, ElementsAre(1, 2));
}

TEST_F(OwnWorkerTest, EventsRaisedWhileSuspendedAreDeliveredInOrderAfterTheResumption)
{
    std::atomic<int> delivered{0};
    OnReading callback([&](Reading& reading) {
        m_values.push_back(reading.getValue());
        delivered.fetch_add(1);
    });
    m_gauge.addCallback(Gauge::HIGH, &callback);
    m_gauge.initialize();
    m_gauge.suspend();
    EXPECT_TRUE(m_gauge.isInitializationDone());
    for (int number = 0; number < 100; ++number) {
        m_gauge.raise(Gauge::HIGH, Reading(number));
    }
    m_gauge.suspend();
    EXPECT_EQ(delivered.load(), 0);

    m_gauge.resume();
    m_gauge.resume();
    finish();

    EXPECT_EQ(m_values, countUpTo(100));
}

TEST_F(OwnWorkerTest, RaiserDoesNotWaitForTheCallback)
{
    Moment started;
    Moment release;
    OnReading callback([&](Reading&) {
        started.come();
        EXPECT_TRUE(release.waitFor());
    });
    m_gauge.addCallback(Gauge::LOW, &callback);
    m_gauge.initialize();

    m_gauge.raise(Gauge::LOW, Reading(1));
    ASSERT_TRUE(started.waitFor());
    for (int number = 0; number < 1000; ++number) {
        m_gauge.raise(Gauge::HIGH, Reading(number)); // the callback before is still at work
    }
    release.come();
    finish();

    EXPECT_EQ(m_values, countUpTo(1000));
}

TEST_F(OwnWorkerTest, EventsQueuedBeforeTheRemovalAreDelivered)
{
    m_gauge.initialize();
    m_gauge.suspend();
    for (int number = 0; number < 10; ++number) {
        m_gauge.raise(Gauge::HIGH, Reading(number));
    }

    m_gauge.removeAllCallbacks();
    m_gauge.raise(Gauge::HIGH, Reading(10));
    m_gauge.resume();
    finish();

    EXPECT_EQ(m_values, countUpTo(10));
}

TEST_F(OwnWorkerTest, CallbackMayRaiseEvents)
{
    OnReading callback([&](Reading& reading) {
        m_values.push_back(reading.getValue());
        if (reading.getValue() < 5) {
            reading.setValue(reading.getValue() + 1);
            m_gauge.callCallback(Gauge::HIGH, reading);
        }
    });
    m_gauge.addCallback(Gauge::HIGH, &callback);
    m_gauge.initialize();

    m_gauge.raise(Gauge::HIGH, Reading(0));
    for (int round = 0; round < 6; ++round) {
        finish(); // one more has been delivered by then, and has raised the next
    }

    EXPECT_EQ(m_values, countUpTo(6));
}

/// Knows its events also when the worker has done with them.
class RememberingGauge : public Gauge {
public:
    std::deque<Event*> events;

protected:
    void queueEvent(Event* event) override
    {
        events.push_back(event);
        Gauge::queueEvent(event);
    }
};

TEST_F(BifHostTest, CallbackThatThrowsIsLoggedAndLeavesItsEventBehind)
{
    auto* const gauge = new RememberingGauge;
    leaveBehind(gauge);
    OnReading callback(
        [](Reading&) { throw AbstractWorker::Task::TaskException("No gauge", "broken glass", __FILE__, __LINE__); });
    gauge->addCallback(Gauge::LOW, &callback);
    observe(*gauge);
    gauge->initialize();

    gauge->raise(Gauge::LOW, Reading(1));
    gauge->raise(Gauge::HIGH, Reading(2));
    raiseLast(*gauge);

    EXPECT_EQ(m_log.count("Error 0x20075 Task - No gauge: broken glass"), 1U);
    EXPECT_THAT(m_values, ElementsAre(2));
    ASSERT_EQ(gauge->events.size(), 3U);
    EXPECT_EQ(*gauge->events.front()->getParameter(), Reading(1)); // neither deleted nor released
}

/// Several interfaces on one worker.
class SharedWorkerTest : public BifHostTest {
protected:
    SharedWorkerTest()
    {
        observe(m_first);
        observe(m_second);
        m_first.initialize();
    }
    void finish() { BifHostTest::finish(m_first, m_worker); }

    Worker& m_worker = sharedWorker();
    Gauge m_first{m_worker};
    Gauge m_second{m_worker};
};

TEST_F(SharedWorkerTest, InitializationOfOneIsThatOfAll)
{
    EXPECT_TRUE(m_second.isInitializationDone());
    m_second.initialize(); // would throw if it set the worker up again
}

TEST_F(SharedWorkerTest, EventsOfAllRunInTheOrderInWhichTheyAreRaised)
{
    for (int number = 0; number < 100; number += 2) {
        m_first.raise(Gauge::HIGH, Reading(number));
        m_second.raise(Gauge::HIGH, Reading(number + 1));
    }
    finish();

    EXPECT_EQ(m_values, countUpTo(100));
}

TEST_F(SharedWorkerTest, EventsOfEachThreadArriveInTheirOrderAndNoneIsLostOrDoubled)
{
    constexpr int each = 5000;
    constexpr int raisers = 4;
    std::vector<std::thread> threads;
    for (int raiser = 0; raiser < raisers; ++raiser) {
        threads.emplace_back([this, raiser] {
            for (int number = raiser * each; number < (raiser + 1) * each; ++number) {
                Gauge& gauge = number % 2 == 0 ? m_first : m_second;
                gauge.raise(Gauge::HIGH, Reading(number));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    finish();

    std::array<std::vector<int>, raisers> taken;
    for (const int value : m_values) {
        taken.at(static_cast<std::size_t>(value / each)).push_back(value);
    }
    for (int raiser = 0; raiser < raisers; ++raiser) {
        EXPECT_EQ(taken.at(static_cast<std::size_t>(raiser)), countUpTo((raiser + 1) * each, raiser * each));
    }
}

TEST_F(SharedWorkerTest, NothingIsLostWhileTheWorkerIsSuspendedAndResumed)
{
    constexpr int each = 2000;
    std::atomic<bool> isOver{false};
    std::thread suspender([&] {
        while (!isOver) {
            m_first.suspend();
            std::this_thread::yield();
            m_second.resume();
        }
    });
    std::thread raiser([&] {
        for (int number = 0; number < each; ++number) {
            m_second.raise(Gauge::HIGH, Reading(number));
        }
    });
    raiser.join();
    isOver = true;
    suspender.join();
    finish();

    EXPECT_EQ(m_values, countUpTo(each));
}

TEST_F(SharedWorkerTest, InterfaceMayBeDestroyedWhenItsEventsAreDelivered)
{
    for (int number = 0; number < 100; ++number) {
        auto gauge = std::make_unique<Gauge>(m_worker);
        observe(*gauge);
        gauge->raise(Gauge::HIGH, Reading(number));
        BifHostTest::finish(*gauge, m_worker);
        gauge.reset();
    }

    EXPECT_EQ(m_values, countUpTo(100));
}

} // namespace
