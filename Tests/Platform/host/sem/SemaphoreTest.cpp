// SPDX-License-Identifier: MIT
#include "AaSem.h"
#include "Bound.hpp"
#include "ManualClock.hpp"
#include "Sanitizers.hpp"
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

/// Those who wait for ever must get what others give, although still others come between, run out of time, and give
/// what they have got in bursts.
TEST(SemaphoreTest, NobodySleepsWhileThereIsACountForHim)
{
    constexpr int each = 5000;
    constexpr int patient = 3;
    const Sem sem = makeSem(0);
    std::atomic<bool> isOver{false};
    std::vector<std::thread> patientOnes;
    std::vector<std::thread> hastyOnes;
    for (int number = 0; number < patient; ++number) {
        patientOnes.emplace_back([&] {
            for (int index = 0; index < each; ++index) {
                EXPECT_EQ(AaSemTake(sem.get(), AA_WAIT_FOREVER), 0);
            }
        });
    }
    for (const int timeout : {AA_NO_WAIT, 1, 20}) {
        hastyOnes.emplace_back([&, timeout] {
            while (!isOver) {
                int taken = 0;
                while (taken < 3 && AaSemTake(sem.get(), timeout) == 0) {
                    ++taken;
                }
                for (; taken > 0; --taken) {
                    AaSemGive(sem.get());
                }
            }
        });
    }
    for (int given = 0; given < patient * each; ++given) {
        AaSemGive(sem.get());
        if (given % 7 == 0) {
            std::this_thread::yield();
        }
    }

    for (std::thread& thread : patientOnes) {
        thread.join(); // waits for ever otherwise
    }
    isOver = true;
    for (std::thread& thread : hastyOnes) {
        thread.join();
    }
    EXPECT_EQ(AaSemTake(sem.get(), AA_NO_WAIT), 1);
}

/// A thread that takes a count and says itself whether it has: what pthread_join() tells of one that was cancelled
/// while it returned is not to be relied on.
class Taker {
public:
    explicit Taker(AaSem* sem) : m_sem(sem) { pthread_create(&m_thread, nullptr, run, this); }
    Taker(const Taker&) = delete;
    Taker& operator=(const Taker&) = delete;

    void cancel() const { pthread_cancel(m_thread); }
    /// Waits for its end. @return whether it has taken a count.
    bool join()
    {
        pthread_join(m_thread, nullptr);
        return m_hasTaken;
    }

private:
    static void* run(void* self)
    {
        auto& taker = *static_cast<Taker*>(self);
        taker.m_hasTaken = AaSemTake(taker.m_sem, AA_WAIT_FOREVER) == 0;
        return nullptr;
    }

    AaSem* m_sem;
    bool m_hasTaken = false;
    pthread_t m_thread{};
};

/// A thread that is cancelled while it waits may have been woken for a count.
TEST(SemaphoreTest, CountOfACancelledWaiterIsForTheOthers)
{
    // ThreadSanitizer cannot tell more than some thousand threads apart.
    const int rounds = dorn::test::hasThreadSanitizer ? 200 : 1000;
    for (int round = 0; round < rounds; ++round) {
        const Sem sem = makeSem(0);
        Taker cancelled(sem.get());
        Taker other(sem.get());
        for (int count = 0; count < round % 100; ++count) { // mostly they have begun to wait, in this order
            std::this_thread::yield();
        }
        AaSemGive(sem.get());
        cancelled.cancel();

        if (cancelled.join()) {
            AaSemGive(sem.get()); // it was faster and has taken the count
        }
        EXPECT_TRUE(other.join()); // waits for ever otherwise
    }
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
