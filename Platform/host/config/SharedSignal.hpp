// SPDX-License-Identifier: MIT
/// @file SharedSignal.hpp
/// A word in shared memory on which threads of several processes wait for news.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::host {

/// Counts events and wakes those who wait for the next one. Zeroed memory is a fresh signal.
///
/// A waiter marks the word before it sleeps, so that notify() makes a system call only when somebody waits. A waiter
/// that is killed leaves at most that mark; the next notify() takes it away. Who is killed inside notify() leaves the
/// mark until the waiters are awake, so that the next notify() wakes them.
class SharedSignal {
public:
    /// Number of events so far, modulo 2^31. What was written before the last of them is visible to the caller.
    std::uint32_t count() const { return m_word.load(std::memory_order_acquire) >> 1; }

    /// Counts an event and wakes everybody who waits.
    void notify();

    /// Sleeps while count() is @p seen, at most until @p until.
    /// @return whether count() has moved on.
    bool waitBeyond(std::uint32_t seen, Deadline until);

    /// Takes the waiters' mark away; for a word whose last user was killed.
    void reset() { m_word.store(0, std::memory_order_release); }

private:
    std::atomic<std::uint32_t> m_word; ///< count << 1 | somebody waits
};
static_assert(sizeof(SharedSignal) == 4, "lies in shared memory");
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "shared between processes");

} // namespace dorn::host
