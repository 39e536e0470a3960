// SPDX-License-Identifier: MIT
#include "sem/Semaphore.hpp"

#include <limits>

namespace dorn::host {
namespace {

/// Counts a waiter in and out, also when its thread is cancelled.
class Waiting {
public:
    explicit Waiting(std::atomic<std::uint32_t>& waiters) : m_waiters(waiters) { m_waiters.fetch_add(1); }
    ~Waiting() { m_waiters.fetch_sub(1); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    std::atomic<std::uint32_t>& m_waiters;
};

} // namespace

bool Semaphore::tryTake()
{
    std::uint32_t count = m_count.load(std::memory_order_relaxed);
    while (count > 0) {
        if (m_count.compare_exchange_weak(count, count - 1, std::memory_order_acquire, std::memory_order_relaxed)) {
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
    const Waiting waiting(m_waiters);
    while (!tryTake()) {
        if (until != noDeadline && (until == Deadline(0) || Clock::get().monotonic() >= until)) {
            return false;
        }
        Clock::get().waitWhile(m_count, 0, until, false);
    }
    return true;
}

bool Semaphore::give() noexcept
{
    std::uint32_t count = m_count.load(std::memory_order_relaxed);
    do {
        if (count == std::numeric_limits<std::uint32_t>::max()) {
            return false;
        }
    } while (!m_count.compare_exchange_weak(count, count + 1));
    if (m_waiters.load() > 0) {
        wakeWaiters(m_count, 1, false);
    }
    return true;
}

} // namespace dorn::host
