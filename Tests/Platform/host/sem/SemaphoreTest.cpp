// SPDX-License-Identifier: MIT
#include "AaSem.h"
#include "Bound.hpp"
#include "ManualClock.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <thread>
#include <vector>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;

struct SemDeleter {
    void operator()(AaSem* sem) const { AaSemDestroy(&sem); }
};
using Sem = std::unique_ptr<AaSem, SemDeleter>;

Sem makeSem(std::uint32_t count)
{
    return Sem(AaSemCreateC(count));
}

TEST(SemaphoreTest, CountsThatAreThereAreTaken)
{
    const Sem sem = makeSem(2);

    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 0);
    EXPECT_EQ(AaSemTake(sem.get(), AA_WAIT_FOREVER), 0);
    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 1);
}

TEST(SemaphoreTest, GivenCountIsTaken)
{
    const Sem sem = makeSem(0);

    EXPECT_EQ(AaSemGive(sem.get()), 0);

    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 0);
    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 1);
}

TEST(SemaphoreTest, GreatestCountIsNotExceeded)
{
    const Sem sem = makeSem(UINT32_MAX);

    EXPECT_EQ(AaSemGive(sem.get()), 1);
    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 0);
    EXPECT_EQ(AaSemGive(sem.get()), 0);
    EXPECT_EQ(AaSemGive(sem.get()), 1);
}

TEST(SemaphoreTest, NoWaitReturnsAtOnce)
{
    const ManualClock clock; // stands still: a wait would not end
    const Sem sem = makeSem(0);

    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 1);
}

TEST(SemaphoreTest, TimeOutIsInMicroSeconds)
{
    ManualClock clock;
    const Sem sem = makeSem(0);
    std::atomic<int> result{-1};
    std::thread taker([&] { result.store(AaSemTake(sem.get(), 700)); });
    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(clock.nextDeadline(), clock.monotonic() + std::chrono::microseconds(700));

    clock.advance(std::chrono::nanoseconds(699'999));
    EXPECT_TRUE(clock.nextDeadline());
    EXPECT_EQ(result.load(), -1);
    clock.advance(std::chrono::nanoseconds(1));

    taker.join();
    EXPECT_EQ(result.load(), 1);
}

TEST(SemaphoreTest, TimeOutOfRealTimeIsNotEarly)
{
    const Sem sem = makeSem(0);
    for (const int timeout : {1, 100, 5000}) {
        const Deadline until = Clock::get().monotonic() + std::chrono::microseconds(timeout);

        EXPECT_EQ(AaSemTake(sem.get(), timeout), 1);

        EXPECT_GE(Clock::get().monotonic(), until);
    }
}

TEST(SemaphoreTest, AnyNegativeTimeOutWaitsWithoutLimit)
{
    ManualClock clock;
    const Sem sem = makeSem(0);
    std::thread taker([&] { EXPECT_EQ(AaSemTake(sem.get(), -5), 0); });
    clock.advance(std::chrono::hours(1));

    AaSemGive(sem.get());

    taker.join();
}

TEST(SemaphoreTest, GiveWakesOneWaiter)
{
    const Sem sem = makeSem(0);
    std::atomic<int> taken{0};
    std::vector<std::thread> takers;
    for (int count = 0; count < 3; ++count) {
        takers.emplace_back([&] {
            EXPECT_EQ(AaSemTake(sem.get(), AA_WAIT_FOREVER), 0);
            taken.fetch_add(1);
            taken.notify_all();
        });
    }
    for (int given = 1; given <= 3; ++given) {
        AaSemGive(sem.get());
        for (int seen = taken.load(); seen < given; seen = taken.load()) {
            taken.wait(seen);
        }
        EXPECT_EQ(taken.load(), given);
    }
    for (std::thread& taker : takers) {
        taker.join();
    }
}

TEST(SemaphoreTest, EveryCountOfManyThreadsIsTakenOnce)
{
    constexpr int threads = 4;
    constexpr int each = 20000;
    const Sem sem = makeSem(0);
    std::vector<std::thread> all;
    for (int count = 0; count < threads; ++count) {
        all.emplace_back([&] {
            for (int index = 0; index < each; ++index) {
                EXPECT_EQ(AaSemGive(sem.get()), 0);
            }
        });
        all.emplace_back([&] {
            for (int index = 0; index < each; ++index) {
                EXPECT_EQ(AaSemTake(sem.get(), AA_WAIT_FOREVER), 0);
            }
        });
    }
    for (std::thread& thread : all) {
        thread.join();
    }

    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 1);
}

TEST(SemaphoreTest, ThreadsThatTakeTurnsNeverStop)
{
    constexpr int rounds = 20000;
    const Sem ping = makeSem(0);
    const Sem pong = makeSem(0);
    std::thread other([&] {
        for (int round = 0; round < rounds; ++round) {
            AaSemTake(ping.get(), AA_WAIT_FOREVER);
            AaSemGive(pong.get());
        }
    });
    for (int round = 0; round < rounds; ++round) {
        AaSemGive(ping.get());
        ASSERT_EQ(AaSemTake(pong.get(), AA_WAIT_FOREVER), 0);
    }
    other.join();
}

/// Who has taken the count may destroy the semaphore while the giver has not returned yet.
TEST(SemaphoreTest, TakerMayDestroyTheSemaphoreAtOnce)
{
    constexpr int rounds = 5000;
    std::atomic<AaSem*> shared{nullptr};
    std::thread giver([&] {
        for (int round = 0; round < rounds; ++round) {
            AaSem* sem = nullptr;
            while (!(sem = shared.exchange(nullptr))) {
                std::this_thread::yield();
            }
            AaSemGive(sem);
        }
    });
    for (int round = 0; round < rounds; ++round) {
        AaSem* sem = AaSemCreateC(0);
        shared.store(sem);
        while (AaSemTake(sem, round % 2 == 0 ? AA_WAIT_FOREVER : AA_NO_WAIT) != 0) {
            std::this_thread::yield();
        }
        AaSemDestroy(&sem);
    }
    giver.join();
}

AaSem* signalled = nullptr;

TEST(SemaphoreTest, SignalHandlerMayGive)
{
    const Sem sem = makeSem(0);
    signalled = sem.get();
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { AaSemGive(signalled); };
    sigaction(SIGUSR1, &action, &before);
    ManualClock clock;
    const pthread_t self = pthread_self();
    std::thread interrupter([&] {
        EXPECT_TRUE(clock.waitForSleepers());
        pthread_kill(self, SIGUSR1);
    });

    EXPECT_EQ(AaSemTake(sem.get(), 1'000'000), 0);

    interrupter.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(SemaphoreTest, NullIsPassedOver)
{
    AaSem* null = nullptr;

    AaSemDestroy(nullptr);
    AaSemDestroy(&null);

    EXPECT_EQ(AaSemTake(nullptr, AA_WAIT_FOREVER), 1);
    EXPECT_EQ(AaSemGive(nullptr), 1);
}

TEST(SemaphoreTest, DestroySetsTheHandleToNull)
{
    AaSem* sem = AaSemCreateC(1);

    AaSemDestroy(&sem);

    EXPECT_EQ(sem, nullptr);
}

} // namespace
} // namespace dorn::host::test
