// SPDX-License-Identifier: MIT
// What queued tasks and registrations take from memory, and what happens when there is none.
#include "EventDispatcher.hpp"
#include "OutOfMemory.hpp"
#include "Worker.hpp"

#include <gtest/gtest.h>

#include <new>

namespace vel::hwapi::common {
namespace {

class Job : public AbstractWorker::Task {
public:
    void Perform() override {}
};

/// Has memory run out while it lives.
class NoMemory {
public:
    NoMemory() { dorn::test::memoryIsOut = true; }
    ~NoMemory() { dorn::test::memoryIsOut = false; }
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

TEST(WorkerMemoryTest, QueuedTaskTakesItsPlaceInTheQueueAndNothingElse)
{
    constexpr std::size_t count = 100'000;
    Worker worker;
    Job job;
    const std::size_t before = dorn::test::memoryTaken;

    for (std::size_t number = 0; number < count; ++number) {
        worker.AssignTaskAndKeepOwnership(&job);
    }

    // A pointer each, and the growing index of the queue's blocks.
    const std::size_t taken = dorn::test::memoryTaken - before;
    EXPECT_GE(taken, count * sizeof(void*));
    EXPECT_LT(taken, count * (sizeof(void*) + 1));
}

TEST(WorkerMemoryTest, TaskThatCannotBeQueuedIsReportedAndTheQueueIsNotLeftLocked)
{
    Worker worker;
    Job job;
    {
        const NoMemory noMemory;
        EXPECT_THROW(
            for (int number = 0; number < 1000; ++number) { worker.AssignTaskAndKeepOwnership(&job); }, std::bad_alloc);
    }

    worker.AssignTaskAndKeepOwnership(&job); // would wait for ever
}

TEST(WorkerMemoryTest, RegistrationWithoutMemoryIsReportedAndTheTablesAreNotLeftLocked)
{
    static auto* const dispatcher = new EventDispatcher; // its semaphores stay behind in any case
    {
        const NoMemory noMemory;
        EXPECT_THROW(dispatcher->RegisterEventHandler(5, *dispatcher, POLLIN), std::bad_alloc);
        EXPECT_THROW(dispatcher->UnregisterEventHandler(5), std::bad_alloc);
    }

    dispatcher->RegisterEventHandler(5, *dispatcher, POLLIN); // would wait for ever
}

} // namespace
} // namespace vel::hwapi::common
