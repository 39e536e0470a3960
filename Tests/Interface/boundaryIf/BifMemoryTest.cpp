// SPDX-License-Identifier: MIT
// What a raised event takes from memory, and what is left behind when there is none.
#include "Gauge.hpp"

#include "Common/OutOfMemory.hpp"
#include "Worker.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>

namespace {

using namespace dorn::test;
using vel::hwapi::common::Worker;

/// A worker that is set up and whose thread never comes: the test performs its tasks.
class IdleWorker : public Worker {
public:
    bool IsSetupDone() override { return true; }
    void AssignTaskAndGiveOwnership(Task* task) override
    {
        ++assignments;
        if (isFull) {
            throw std::bad_alloc();
        }
        m_task.reset(task);
    }
    void work()
    {
        m_task->Perform();
        m_task.reset();
    }

    int assignments = 0;
    bool isFull = false;

private:
    std::unique_ptr<Task> m_task;
};

std::size_t blocksInUse()
{
    return blocksTaken - blocksGivenBack;
}

class BifMemoryTest : public testing::Test {
protected:
    BifMemoryTest() { m_gauge.addCallback(Gauge::HIGH, &m_callback); }
    ~BifMemoryTest() override { blocksBeforeFailure = -1; }

    IdleWorker m_worker;
    Gauge m_gauge{m_worker};
    int m_last = 0;
    OnReading m_callback{[this](Reading& reading) { m_last = reading.getValue(); }};
    Reading m_reading{5};
};

TEST_F(BifMemoryTest, RaisingAnEventTakesTwoBlocksAndOneHandOver)
{
    const std::size_t before = blocksTaken;

    m_gauge.callCallback(Gauge::HIGH, m_reading);

    EXPECT_EQ(blocksTaken - before, 2U);
    EXPECT_EQ(m_worker.assignments, 1);
    m_worker.work();
    EXPECT_EQ(m_last, 5);
}

TEST_F(BifMemoryTest, DeliveredEventGivesEverythingBack)
{
    const std::size_t before = blocksInUse();

    m_gauge.callCallback(Gauge::HIGH, m_reading);
    EXPECT_EQ(blocksInUse(), before + 2);
    m_worker.work();

    EXPECT_EQ(blocksInUse(), before);
}

TEST_F(BifMemoryTest, EventWithoutCallbackTakesNothing)
{
    const std::size_t before = blocksTaken;

    m_gauge.callCallback(Gauge::LOW, m_reading);

    EXPECT_EQ(blocksTaken, before);
    EXPECT_EQ(m_worker.assignments, 0);
}

TEST_F(BifMemoryTest, SynchronousEventTakesNothing)
{
    const std::size_t before = blocksTaken;

    m_gauge.callEventSynchronously(m_callback, m_reading);

    EXPECT_EQ(blocksTaken, before);
    EXPECT_EQ(m_last, 5);
}

TEST_F(BifMemoryTest, EventsOnARealWorkerTakeTwoBlocksAndTheGrowthOfItsQueue)
{
    class SetUpWorker : public Worker {
    public:
        bool IsSetupDone() override { return true; }
    };
    constexpr std::size_t count = 10'000;
    static auto* const worker = new SetUpWorker; // the events stay in its queue
    Gauge gauge(*worker);
    gauge.addCallback(Gauge::HIGH, &m_callback);
    const std::size_t before = blocksTaken;

    for (std::size_t number = 0; number < count; ++number) {
        gauge.callCallback(Gauge::HIGH, m_reading);
    }

    constexpr std::size_t pointersInBlockOfQueue = 512 / sizeof(void*);
    const std::size_t taken = blocksTaken - before;
    EXPECT_GE(taken, 2 * count);
    EXPECT_LE(taken, 2 * count + count / pointersInBlockOfQueue + 16); // the index of the queue grows as well
}

TEST_F(BifMemoryTest, NoMemoryForTheCopyLeavesNothingBehind)
{
    const std::size_t before = blocksInUse();
    blocksBeforeFailure = 0;

    EXPECT_THROW(m_gauge.callCallback(Gauge::HIGH, m_reading), std::bad_alloc);

    EXPECT_EQ(blocksInUse(), before);
    EXPECT_EQ(m_worker.assignments, 0);
}

TEST_F(BifMemoryTest, NoMemoryForTheEventReleasesTheCopy)
{
    const std::size_t before = blocksInUse();
    blocksBeforeFailure = 1;

    EXPECT_THROW(m_gauge.callCallback(Gauge::HIGH, m_reading), std::bad_alloc);

    EXPECT_EQ(blocksInUse(), before);
    EXPECT_EQ(m_worker.assignments, 0);
}

TEST_F(BifMemoryTest, QueueThatCannotGrowReleasesCopyAndEvent)
{
    const std::size_t before = blocksInUse();
    m_worker.isFull = true;

    EXPECT_THROW(m_gauge.callCallback(Gauge::HIGH, m_reading), std::bad_alloc);

    EXPECT_EQ(blocksInUse(), before);
    EXPECT_EQ(m_worker.assignments, 1);
}

TEST_F(BifMemoryTest, InterfaceWorksOnAfterAFailure)
{
    blocksBeforeFailure = 1;
    EXPECT_THROW(m_gauge.callCallback(Gauge::HIGH, m_reading), std::bad_alloc);

    m_gauge.callCallback(Gauge::HIGH, m_reading);
    m_worker.work();

    EXPECT_EQ(m_last, 5);
}

TEST_F(BifMemoryTest, CopyThatThrowsLeavesNothingBehind)
{
    /// Cannot be copied when it says so.
    class Stubborn : public Reading {
    public:
        Stubborn() = default;
        Stubborn(const Stubborn& other) : Reading(other) { throw std::runtime_error("not copied"); }
        Stubborn& operator=(const Stubborn&) = default;
        ~Stubborn() override = default;
    };
    class StubbornGauge : public AbstractBif<Stubborn> {
    public:
        explicit StubbornGauge(AbstractWorker& worker) : AbstractBif(worker) {}
        using AbstractBif::callEventAsynchronously;
    };
    class Callback : public StubbornGauge::CallbackFunctor {
        void operator()(Stubborn& /*parameter*/) override {}
    };
    StubbornGauge gauge(m_worker);
    Callback callback;
    Stubborn parameter;
    std::size_t before = 0;
    std::size_t after = 0;

    before = blocksInUse();
    try {
        gauge.callEventAsynchronously(callback, parameter);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error&) {
        after = blocksInUse() - 1; // the text of the exception
    }

    EXPECT_EQ(after, before);
    EXPECT_EQ(m_worker.assignments, 0);
}

} // namespace
