// SPDX-License-Identifier: MIT
/// @file Semaphore.hpp
/// A counting semaphore: a word that is decremented, and a futex only for those who find it 0.
///
/// A count that is taken or given while nobody sleeps is one atomic operation. A waiter who has been called and has not
/// come yet is not called again, so counts that follow each other closely are that too. Who finds no count keeps away
/// for a moment before he joins those who sleep.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <bit>
#include <cstdint>
#include <limits>

namespace dorn::host {

/// Who has taken a count may end the semaphore although give() has not returned to its caller yet.
class Semaphore {
public:
    explicit Semaphore(std::uint32_t count) : m_state(count) {}
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Takes one count if one is there.
    bool tryTake() noexcept
    {
        std::uint64_t state = m_state.load(std::memory_order_relaxed);
        while (countOf(state) > 0) {
            if (m_state.compare_exchange_weak(state, state - 1, std::memory_order_acquire, std::memory_order_relaxed)) {
                return true;
            }
        }
        return false;
    }

    /// Takes one count. @return false when the time passed without one.
    bool take(Deadline until);

    /// Gives one count. Safe in a signal handler. @return false when the count is at its greatest value.
    bool give() noexcept
    {
        std::atomic<std::uint32_t>& word = waitWord();
        std::uint64_t state = m_state.load(std::memory_order_relaxed);
        bool isCalling = false;
        do {
            if (countOf(state) == std::numeric_limits<std::uint32_t>::max()) {
                return false;
            }
            isCalling = callsOf(state) < waitersOf(state) && callsOf(state) <= countOf(state);
        } while (!m_state.compare_exchange_weak(state, state + 1 + (isCalling ? oneCall : 0)));
        if (isCalling) {
            wakeWaiters(word, 1, false);
        }
        return true;
    }

private:
    class Waiting;

    static constexpr std::uint64_t oneWaiter = std::uint64_t{1} << 32;
    static constexpr std::uint64_t oneCall = std::uint64_t{1} << 48;
    static std::uint32_t countOf(std::uint64_t state) { return static_cast<std::uint32_t>(state); }
    static std::uint32_t waitersOf(std::uint64_t state) { return static_cast<std::uint16_t>(state >> 32); }
    static std::uint32_t callsOf(std::uint64_t state) { return static_cast<std::uint32_t>(state >> 48); }

    /// The futex lies on the half of the state that holds waiters and calls. Only its address is used, by the kernel.
    std::atomic<std::uint32_t>& waitWord()
    {
        auto* const halves = reinterpret_cast<std::atomic<std::uint32_t>*>(&m_state);
        return halves[std::endian::native == std::endian::little ? 1 : 0];
    }
    bool takeOrJoin();
    bool wait(Deadline until);

    /// From its lower end: the count (32 bits), those who wait for one (16), and how many of them have been called and
    /// have not come yet (16). Giving a count, learning who waits and calling one of them is one step, after which
    /// nothing of the semaphore is looked at.
    ///
    /// There are always as many calls as there are counts that could be given to waiters, min(count, waiters), or more.
    /// A waiter sleeps only while there is no call, so he never sleeps while there is a count for him.
    std::atomic<std::uint64_t> m_state;
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "used in signal handlers");
};

} // namespace dorn::host
