// SPDX-License-Identifier: MIT
/// @file Semaphore.hpp
/// A counting semaphore: a word that is decremented, and a futex only for those who find it 0.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::host {

class Semaphore {
public:
    explicit Semaphore(std::uint32_t count) : m_count(count) {}

    /// Takes one count. @return false when the time passed without one.
    bool take(Deadline until);
    /// Gives one count. Safe in a signal handler. @return false when the count is at its greatest value.
    bool give() noexcept;

private:
    bool tryTake();

    std::atomic<std::uint32_t> m_count;
    std::atomic<std::uint32_t> m_waiters{0};
};

} // namespace dorn::host
