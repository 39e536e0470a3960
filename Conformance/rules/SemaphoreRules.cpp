// SPDX-License-Identifier: MIT
// Counting semaphores and recursive mutexes.
#include "AaSem.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <csignal>
#include <pthread.h>
#include <thread>

#if defined(__SANITIZE_THREAD__)
/// Wrong use of mutexes has a result of its own here; ThreadSanitizer is not to take it for an error.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options()
{
    return "report_mutex_bugs=0";
}
#endif

namespace dorn::conformance {
namespace {

class Semaphore {
public:
    explicit Semaphore(uint32_t count) : m_handle(AaSemCreateC(count))
    {
        expect(m_handle != nullptr, "AaSemCreateC(" + std::to_string(count) + ") gave null");
    }
    ~Semaphore() { AaSemDestroy(&m_handle); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    AaSem* handle() const { return m_handle; }
    int32_t tryTake() const { return AaSemTake(m_handle, AA_NO_WAIT); }
    int32_t take() const { return AaSemTake(m_handle, boundOfSeam()); }
    int32_t give() const { return AaSemGive(m_handle); }

private:
    AaSem* m_handle;
};

class Mutex {
public:
    Mutex() : m_handle(AaSemReMutexCreate()) { expect(m_handle != nullptr, "AaSemReMutexCreate() gave null"); }
    ~Mutex() { AaSemReMutexDestroy(&m_handle); }
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    AaSemReMutex* handle() const { return m_handle; }

private:
    AaSemReMutex* m_handle;
};

void initialCountCanBeTaken()
{
    const Semaphore semaphore(3);
    for (int count = 1; count <= 3; ++count) {
        expectEqual(semaphore.tryTake(), 0, "take number " + std::to_string(count) + " of a count of 3");
    }
    expectEqual(semaphore.tryTake(), 1, "take number 4 of a count of 3");
}

void noWaitDoesNotWait()
{
    const Semaphore semaphore(0);
    expectDuration(Milliseconds(0), "AaSemTake() without waiting",
                   [&] { expectEqual(semaphore.tryTake(), 1, "AaSemTake() of an empty semaphore"); });
}

void takeTimesOut()
{
    const Semaphore semaphore(0);
    expectDuration(Milliseconds(50), "AaSemTake(50000 us) of an empty semaphore",
                   [&] { expectEqual(AaSemTake(semaphore.handle(), 50'000), 1, "AaSemTake() that timed out"); });
}

void giveEndsAWait()
{
    const Semaphore semaphore(0);
    const Semaphore begun(0);
    Eu taker([&] {
        begun.give();
        expectEqual(AaSemTake(semaphore.handle(), AA_WAIT_FOREVER), 0, "AaSemTake() without limit");
    });
    expectEqual(begun.take(), 0, "AaSemTake() of what an EU gives");
    expectEqual(semaphore.give(), 0, "AaSemGive()");
    taker.join();
}

void eachGiveWakesOne()
{
    constexpr unsigned takers = 4;
    const Semaphore semaphore(0);
    const Semaphore taken(0);
    const auto take = [&] {
        expectEqual(semaphore.take(), 0, "AaSemTake() of what another EU gives");
        taken.give();
    };
    Eu first(take), second(take), third(take), fourth(take);
    for (unsigned given = 1; given <= takers; ++given) {
        semaphore.give();
        expectEqual(taken.take(), 0, "a waiter for give number " + std::to_string(given));
        expectEqual(taken.tryTake(), 1, "a second waiter that one give has woken");
    }
    expectEqual(semaphore.tryTake(), 1, "a count that is left when as many were taken as given");
}

void countsAreNotLost()
{
    constexpr unsigned rounds = 20'000;
    const Semaphore semaphore(0);
    Eu giver([&] {
        for (unsigned round = 0; round < rounds; ++round) {
            semaphore.give();
        }
    });
    for (unsigned round = 0; round < rounds; ++round) {
        expectEqual(semaphore.take(), 0, "count " + std::to_string(round) + " of 20000");
    }
    expectEqual(semaphore.tryTake(), 1, "a count that nobody has given");
}

void nullSemaphoreIsRefused()
{
    expectEqual(AaSemTake(nullptr, AA_NO_WAIT), 1, "AaSemTake() of a null semaphore");
    expectEqual(AaSemGive(nullptr), 1, "AaSemGive() of a null semaphore");
}

void destroySetsTheHandleToNull()
{
    AaSem* semaphore = AaSemCreateC(1);
    expect(semaphore != nullptr, "AaSemCreateC() gave null");
    AaSemDestroy(&semaphore);
    expect(semaphore == nullptr, "AaSemDestroy() left the handle as it was");
    AaSemDestroy(&semaphore);
    AaSemDestroy(nullptr);
}

void takerMayDestroy()
{
    for (int round = 0; round < 2'000; ++round) {
        AaSem* semaphore = AaSemCreateC(0);
        expect(semaphore != nullptr, "AaSemCreateC() gave null");
        std::thread giver([semaphore] { AaSemGive(semaphore); });
        const int32_t status = AaSemTake(semaphore, boundOfSeam());
        AaSemDestroy(&semaphore);
        giver.join();
        expectEqual(status, 0, "AaSemTake() of what a thread gives");
    }
}

void greatestCountIsNotPassed()
{
    AaSem* semaphore = AaSemCreateC(UINT32_MAX);
    if (!semaphore) {
        skip("AaSemCreateC(4294967295) gave null: your semaphores count less far");
    }
    const int32_t status = AaSemGive(semaphore);
    AaSemDestroy(&semaphore);
    expectEqual(status, 1, "AaSemGive() at the greatest count");
}

AaSem* givenInHandler = nullptr;

void giveInSignalHandler()
{
    const Semaphore semaphore(0);
    givenInHandler = semaphore.handle();
    struct sigaction action {};
    action.sa_handler = [](int) { AaSemGive(givenInHandler); };
    struct sigaction before {};
    sigaction(SIGUSR1, &action, &before);
    raise(SIGUSR1);
    sigaction(SIGUSR1, &before, nullptr);
    expectEqual(semaphore.tryTake(), 0, "AaSemTake() of what a signal handler gave");
}

void takeIsCancelled()
{
    const Semaphore semaphore(0);
    expectUnwinding([&semaphore] { AaSemTake(semaphore.handle(), AA_WAIT_FOREVER); });
    expectEqual(semaphore.give(), 0, "AaSemGive() after a waiter has been cancelled");
    expectEqual(semaphore.tryTake(), 0, "AaSemTake() of a count that was given after a waiter had been cancelled");
}

void mutexIsRecursive()
{
    const Mutex mutex;
    for (int depth = 0; depth < 3; ++depth) {
        expectEqual(AaSemReMutexTake(mutex.handle()), 0, "AaSemReMutexTake() by the thread that holds it");
    }
    for (int depth = 0; depth < 3; ++depth) {
        expectEqual(AaSemReMutexGive(mutex.handle()), 0, "AaSemReMutexGive() by the thread that holds it");
    }
    expectEqual(AaSemReMutexGive(mutex.handle()), 1, "AaSemReMutexGive() once more than it was taken");
}

void mutexExcludesOthers()
{
    const Mutex mutex;
    Signal wants;
    std::atomic<bool> isTaken{false};
    AaSemReMutexTake(mutex.handle());
    AaSemReMutexTake(mutex.handle());
    Eu other([&] {
        wants.raise();
        expectEqual(AaSemReMutexTake(mutex.handle()), 0, "AaSemReMutexTake() of a mutex that another thread gives");
        isTaken.store(true);
        AaSemReMutexGive(mutex.handle());
    });
    wants.await("a new EU does not run");
    AaSemReMutexGive(mutex.handle());
    // The other gets every chance to take what is not free.
    for (int round = 0; round < 20'000 && !isTaken.load(); ++round) {
        AaSemReMutexTake(mutex.handle());
        AaSemReMutexGive(mutex.handle());
        std::this_thread::yield();
    }
    const bool isTooEarly = isTaken.load();
    AaSemReMutexGive(mutex.handle());
    other.join();
    expect(!isTooEarly, "another thread took a mutex that was taken twice and given once");
}

void mutexProtects()
{
    constexpr unsigned rounds = 20'000;
    const Mutex mutex;
    unsigned count = 0;
    const auto work = [&] {
        for (unsigned round = 0; round < rounds; ++round) {
            AaSemReMutexTake(mutex.handle());
            const unsigned before = count;
            std::atomic_signal_fence(std::memory_order_seq_cst);
            count = before + 1;
            AaSemReMutexGive(mutex.handle());
        }
    };
    Eu first(work);
    Eu second(work);
    first.join();
    second.join();
    expectEqual(count, 2 * rounds, "what two EUs have counted to under a mutex");
}

void onlyTheHolderGives()
{
    const Mutex mutex;
    AaSemReMutexTake(mutex.handle());
    int32_t status = 0;
    std::thread([&] { status = AaSemReMutexGive(mutex.handle()); }).join();
    AaSemReMutexGive(mutex.handle());
    expectEqual(status, 1, "AaSemReMutexGive() by a thread that does not hold it");
}

void nullMutexIsRefused()
{
    expectEqual(AaSemReMutexTake(nullptr), 1, "AaSemReMutexTake() of a null mutex");
    expectEqual(AaSemReMutexGive(nullptr), 1, "AaSemReMutexGive() of a null mutex");
}

void mutexDestroySetsTheHandleToNull()
{
    AaSemReMutex* mutex = AaSemReMutexCreate();
    expect(mutex != nullptr, "AaSemReMutexCreate() gave null");
    AaSemReMutexDestroy(&mutex);
    expect(mutex == nullptr, "AaSemReMutexDestroy() left the handle as it was");
    AaSemReMutexDestroy(&mutex);
    AaSemReMutexDestroy(nullptr);
}

constexpr std::array rules{
    Rule{"sem.initial-count-can-be-taken", "AaSem.h", "AaSemCreateC AaSemTake",
         "A semaphore made with a count of n can be taken n times without waiting; then AaSemTake() returns 1",
         initialCountCanBeTaken},
    Rule{"sem.take.no-wait-does-not-wait", "AaSem.h", "AaSemTake",
         "AaSemTake() with AA_NO_WAIT returns 1 at once when there is no count", noWaitDoesNotWait},
    Rule{"sem.take.times-out", "AaSem.h", "AaSemTake",
         "AaSemTake() waits for as many micro-seconds as it is told, no less, and then returns 1", takeTimesOut},
    Rule{"sem.give-ends-a-wait", "AaSem.h", "AaSemGive AaSemTake",
         "AaSemGive() wakes an EU that waits in AaSemTake() with AA_WAIT_FOREVER", giveEndsAWait},
    Rule{"sem.each-give-wakes-one", "AaSem.h", "AaSemGive AaSemTake", "AaSemGive() wakes one waiter, not more",
         eachGiveWakesOne},
    Rule{"sem.counts-are-not-lost", "AaSem.h", "AaSemGive AaSemTake",
         "Every count that is given can be taken once, while others give", countsAreNotLost},
    Rule{"sem.null-is-refused", "AaSem.h", "AaSemTake AaSemGive",
         "AaSemTake() and AaSemGive() of a null semaphore return 1", nullSemaphoreIsRefused},
    Rule{"sem.destroy-sets-the-handle-to-null", "AaSem.h", "AaSemDestroy AaSemCreateC",
         "AaSemDestroy() sets the handle to null and passes null over", destroySetsTheHandleToNull},
    Rule{"sem.taker-may-destroy", "AaSem.h", "AaSemDestroy AaSemGive AaSemTake",
         "Who has taken a count may destroy the semaphore although the AaSemGive() that made it has not returned",
         takerMayDestroy},
    Rule{"sem.greatest-count-is-not-passed", "AaSem.h", "AaSemGive AaSemCreateC",
         "AaSemGive() of a semaphore with the greatest count returns 1", greatestCountIsNotPassed},
    Rule{"sem.give-in-a-signal-handler", "AaSem.h", "AaSemGive", "AaSemGive() may be called from a signal handler",
         giveInSignalHandler},
    Rule{"sem.take-is-cancelled", "AaSem.h", "AaSemTake",
         "An EU that is cancelled in AaSemTake() unwinds, so that destructors run; the semaphore stays usable",
         takeIsCancelled},
    Rule{
        "mutex.is-recursive", "AaSem.h", "AaSemReMutexCreate AaSemReMutexTake AaSemReMutexGive",
        "The thread that holds a mutex may take it again, and gives it as often; one AaSemReMutexGive() more returns 1",
        mutexIsRecursive},
    Rule{"mutex.excludes-others", "AaSem.h", "AaSemReMutexTake AaSemReMutexGive",
         "Another thread gets the mutex when it has been given as often as it was taken, and not before",
         mutexExcludesOthers},
    Rule{"mutex.protects", "AaSem.h", "AaSemReMutexTake AaSemReMutexGive", "One thread at a time holds a mutex",
         mutexProtects},
    Rule{"mutex.only-the-holder-gives", "AaSem.h", "AaSemReMutexGive",
         "AaSemReMutexGive() by a thread that does not hold the mutex returns 1", onlyTheHolderGives},
    Rule{"mutex.null-is-refused", "AaSem.h", "AaSemReMutexTake AaSemReMutexGive",
         "AaSemReMutexTake() and AaSemReMutexGive() of a null mutex return 1", nullMutexIsRefused},
    Rule{"mutex.destroy-sets-the-handle-to-null", "AaSem.h", "AaSemReMutexDestroy AaSemReMutexCreate",
         "AaSemReMutexDestroy() sets the handle to null and passes null over", mutexDestroySetsTheHandleToNull},
};

} // namespace

Rules semaphoreRules()
{
    return rules;
}

} // namespace dorn::conformance
