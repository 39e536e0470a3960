// SPDX-License-Identifier: MIT
#include "AaSem.h"
#include "ManualClock.hpp"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <pthread.h>
#include <thread>
#include <vector>

using namespace dorn::testkit;

namespace {

class SemaphoreTest : public ::testing::Test {
protected:
    ~SemaphoreTest() override { AaSemDestroy(&m_sem); }
    AaSem* m_sem = AaSemCreateC(0);
};

AaSem* semOfSignal = nullptr;

void giveInHandler(int)
{
    AaSemGive(semOfSignal);
}

} // namespace

TEST_F(SemaphoreTest, InitialCountsAreTakenWithoutWaiting)
{
    AaSem* sem = AaSemCreateC(2);
    EXPECT_EQ(AaSemTake(sem, AA_NO_WAIT), 0);
    EXPECT_EQ(AaSemTake(sem, AA_NO_WAIT), 0);
    EXPECT_EQ(AaSemTake(sem, AA_NO_WAIT), 1);
    AaSemDestroy(&sem);
    EXPECT_EQ(sem, nullptr);
}

TEST_F(SemaphoreTest, GivenCountIsTakenByWaiter)
{
    std::thread waiter([this] { EXPECT_EQ(AaSemTake(m_sem, AA_WAIT_FOREVER), 0); });
    EXPECT_EQ(AaSemGive(m_sem), 0);
    waiter.join();
    EXPECT_EQ(AaSemTake(m_sem, AA_NO_WAIT), 1);
}

TEST_F(SemaphoreTest, TakeGivesUpWhenItsTimeHasPassedAndNotBefore)
{
    ManualClock clock;
    std::atomic<bool> hasReturned{false};
    std::thread waiter([&] {
        EXPECT_EQ(AaSemTake(m_sem, 5000), 1);
        hasReturned.store(true);
    });
    ASSERT_TRUE(clock.waitForSleepers());
    clock.advance(std::chrono::microseconds(4999));
    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_FALSE(hasReturned.load());
    clock.advance(std::chrono::microseconds(1));
    waiter.join();
}

TEST_F(SemaphoreTest, GiveMayComeFromSignalHandler)
{
    semOfSignal = m_sem;
    const auto previous = std::signal(SIGUSR1, giveInHandler);
    raise(SIGUSR1);
    std::signal(SIGUSR1, previous);
    EXPECT_EQ(AaSemTake(m_sem, AA_NO_WAIT), 0);
}

TEST_F(SemaphoreTest, FullCountIsRefused)
{
    AaSem* sem = AaSemCreateC(0xFFFFFFFF);
    EXPECT_EQ(AaSemGive(sem), 1);
    AaSemDestroy(&sem);
}

TEST_F(SemaphoreTest, NoCountIsLostAmongManyThreads)
{
    constexpr int threads = 4;
    constexpr int rounds = 5000;
    std::vector<std::thread> workers;
    for (int index = 0; index < threads; ++index) {
        workers.emplace_back([this] {
            for (int round = 0; round < rounds; ++round) {
                AaSemGive(m_sem);
            }
        });
        workers.emplace_back([this] {
            for (int round = 0; round < rounds; ++round) {
                AaSemTake(m_sem, AA_WAIT_FOREVER);
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(AaSemTake(m_sem, AA_NO_WAIT), 1);
}

TEST_F(SemaphoreTest, NullIsRefused)
{
    AaSem* none = nullptr;
    EXPECT_EQ(AaSemTake(nullptr, AA_NO_WAIT), 1);
    EXPECT_EQ(AaSemGive(nullptr), 1);
    AaSemDestroy(&none);
    AaSemDestroy(nullptr);
}

TEST(ReMutexTest, HolderMayTakeItAgainAndGivesItAsOften)
{
    AaSemReMutex* mutex = AaSemReMutexCreate();
    EXPECT_EQ(AaSemReMutexTake(mutex), 0);
    EXPECT_EQ(AaSemReMutexTake(mutex), 0);
    EXPECT_EQ(AaSemReMutexGive(mutex), 0);
    EXPECT_EQ(AaSemReMutexGive(mutex), 0);
    EXPECT_EQ(AaSemReMutexGive(mutex), 1);
    AaSemReMutexDestroy(&mutex);
    EXPECT_EQ(mutex, nullptr);
}

TEST(ReMutexTest, AnotherThreadCannotGiveIt)
{
    AaSemReMutex* mutex = AaSemReMutexCreate();
    AaSemReMutexTake(mutex);
    std::thread([mutex] { EXPECT_EQ(AaSemReMutexGive(mutex), 1); }).join();
    EXPECT_EQ(AaSemReMutexGive(mutex), 0);
    AaSemReMutexDestroy(&mutex);
}

TEST(ReMutexTest, ExcludesOtherThreads)
{
    AaSemReMutex* mutex = AaSemReMutexCreate();
    int counter = 0;
    std::vector<std::thread> workers;
    for (int index = 0; index < 4; ++index) {
        workers.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                AaSemReMutexTake(mutex);
                ++counter;
                AaSemReMutexGive(mutex);
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(counter, 20000);
    AaSemReMutexDestroy(&mutex);
}

TEST(ReMutexTest, NullIsRefused)
{
    AaSemReMutex* none = nullptr;
    EXPECT_EQ(AaSemReMutexTake(nullptr), 1);
    EXPECT_EQ(AaSemReMutexGive(nullptr), 1);
    AaSemReMutexDestroy(&none);
    AaSemReMutexDestroy(nullptr);
}
