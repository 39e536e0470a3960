// SPDX-License-Identifier: MIT
/// @file Semaphore.hpp
/// A counting semaphore: a word that is decremented, and a futex only for those who find it 0.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::host {

/// Who has taken a count may end the semaphore although give() has not returned to its caller yet.
class Semaphore {
public:
    explicit Semaphore(std::uint32_t count) : m_state(count) {}

    /// Takes one count. @return false when the time passed without one.
    bool take(Deadline until);
    /// Gives one count. Safe in a signal handler. @return false when the count is at its greatest value.
    bool give() noexcept;

private:
    class Waiting;

    bool tryTake();
    std::atomic<std::uint32_t>& countWord();

    /// The count in the lower half, those who wait for one in the upper: giving a count and learning who waits is one
    /// step, after which nothing of the semaphore is looked at.
    std::atomic<std::uint64_t> m_state;
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "used in signal handlers");
};

} // namespace dorn::host
