// SPDX-License-Identifier: MIT
#include "sem/Semaphore.hpp"

#include <bit>
#include <limits>

namespace dorn::host {
namespace {

constexpr std::uint64_t oneWaiter = std::uint64_t{1} << 32;

std::uint32_t countOf(std::uint64_t state)
{
    return static_cast<std::uint32_t>(state);
}

} // namespace

/// The futex lies on the half of the state that holds the count. Only its address is used, by the kernel.
std::atomic<std::uint32_t>& Semaphore::countWord()
{
    auto* const halves = reinterpret_cast<std::atomic<std::uint32_t>*>(&m_state);
    return halves[std::endian::native == std::endian::little ? 0 : 1];
}

/// Counts a waiter in and out. One whose thread is cancelled may have been woken for a count: another gets it then.
class Semaphore::Waiting {
public:
    explicit Waiting(Semaphore& semaphore) : m_semaphore(semaphore) { m_semaphore.m_state.fetch_add(oneWaiter); }
    ~Waiting()
    {
        const std::uint64_t left = m_semaphore.m_state.fetch_sub(oneWaiter) - oneWaiter;
        if (m_isCancelled && countOf(left) > 0 && left >= oneWaiter) {
            wakeWaiters(m_semaphore.countWord(), 1, false);
        }
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    bool end(bool hasTaken)
    {
        m_isCancelled = false;
        return hasTaken;
    }

private:
    Semaphore& m_semaphore;
    bool m_isCancelled = true;
};

bool Semaphore::tryTake()
{
    std::uint64_t state = m_state.load(std::memory_order_relaxed);
    while (countOf(state) > 0) {
        if (m_state.compare_exchange_weak(state, state - 1, std::memory_order_acquire, std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

bool Semaphore::take(Deadline until)
{
    if (tryTake()) {
        return true;
    }
    if (until == Deadline(0)) {
        return false;
    }
    Waiting waiting(*this);
    while (!tryTake()) {
        if (until != noDeadline && Clock::get().monotonic() >= until) {
            return waiting.end(false);
        }
        Clock::get().waitWhile(countWord(), 0, until, false);
    }
    return waiting.end(true);
}

bool Semaphore::give() noexcept
{
    std::atomic<std::uint32_t>& word = countWord();
    std::uint64_t state = m_state.load(std::memory_order_relaxed);
    do {
        if (countOf(state) == std::numeric_limits<std::uint32_t>::max()) {
            return false;
        }
    } while (!m_state.compare_exchange_weak(state, state + 1));
    if (state >= oneWaiter) {
        wakeWaiters(word, 1, false);
    }
    return true;
}

} // namespace dorn::host
