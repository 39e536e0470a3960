// SPDX-License-Identifier: MIT
#include "sem/Semaphore.hpp"

#include "port/Processor.hpp"

#include <chrono>

namespace dorn::host {
namespace {

/// How long a taker who has found nothing keeps away: about what it costs to be woken.
constexpr std::chrono::nanoseconds restTime{10000};
constexpr int pausesPerLook = 8;

/// Keeps away from the semaphore for a moment, without a look at it: each look would take its line from the processor
/// of those who give and take, who get the more done in this time the less they are disturbed.
void rest()
{
    if (!hasSeveralProcessors()) {
        return;
    }
    const auto end = std::chrono::steady_clock::now() + restTime;
    do {
        for (int pause = 0; pause < pausesPerLook; ++pause) {
            relaxProcessor();
        }
    } while (std::chrono::steady_clock::now() < end);
}

} // namespace

/// Counts a waiter out whose thread is cancelled. He may have been woken for a call: another one is woken then.
class Semaphore::Waiting {
public:
    explicit Waiting(Semaphore& semaphore) : m_semaphore(semaphore) {}
    ~Waiting()
    {
        if (m_hasEnded) {
            return;
        }
        std::uint64_t state = m_semaphore.m_state.load();
        std::uint64_t left = 0;
        do {
            left = state - oneWaiter;
            if (callsOf(left) > waitersOf(left)) {
                left -= oneCall;
            }
        } while (!m_semaphore.m_state.compare_exchange_weak(state, left));
        if (callsOf(left) > 0) {
            wakeWaiters(m_semaphore.waitWord(), 1, false);
        }
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    /// Goes on from @p state to @p next, in which he does not wait any more. @return false when it has changed.
    bool end(std::uint64_t state, std::uint64_t next)
    {
        m_hasEnded = m_semaphore.m_state.compare_exchange_strong(state, next);
        return m_hasEnded;
    }

private:
    Semaphore& m_semaphore;
    bool m_hasEnded = false;
};

/// Takes a count, or else joins those who wait.
bool Semaphore::takeOrJoin()
{
    std::uint64_t state = m_state.load(std::memory_order_relaxed);
    while (!m_state.compare_exchange_weak(state, countOf(state) > 0 ? state - 1 : state + oneWaiter)) {
    }
    return countOf(state) > 0;
}

bool Semaphore::take(Deadline until)
{
    rest();
    return takeOrJoin() || wait(until);
}

bool Semaphore::wait(Deadline until)
{
    Waiting waiting(*this);
    for (;;) {
        std::uint64_t state = m_state.load();
        if (countOf(state) > 0) { // then there is a call as well
            if (waiting.end(state, state - 1 - oneWaiter - oneCall)) {
                return true;
            }
        } else if (callsOf(state) > 0) { // somebody else has been faster
            m_state.compare_exchange_strong(state, state - oneCall);
        } else if (until != noDeadline && Clock::get().monotonic() >= until) {
            if (waiting.end(state, state - oneWaiter)) {
                return false;
            }
        } else {
            Clock::get().waitWhile(waitWord(), static_cast<std::uint32_t>(state >> 32), until, false);
        }
    }
}

} // namespace dorn::host
