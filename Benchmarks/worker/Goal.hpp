// SPDX-License-Identifier: MIT
/// @file Goal.hpp
/// What the measured work does: next to nothing.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace dorn::benchmarks {

using Moment = std::chrono::steady_clock::time_point;

/// Is reached when it has been approached as often as expected, always in the same thread. Another one waits for that.
class Goal {
public:
    /// Begins anew. Called while nobody approaches.
    void expect(std::uint32_t count)
    {
        m_left = count;
        m_isReached.store(0);
    }
    void approach()
    {
        if (--m_left == 0) {
            m_when = std::chrono::steady_clock::now();
            m_isReached.store(1);
            m_isReached.notify_one();
        }
    }
    /// Waits until it is reached. @return when that was
    Moment wait()
    {
        m_isReached.wait(0);
        return m_when;
    }

private:
    std::uint32_t m_left = 0;
    Moment m_when;
    std::atomic<std::uint32_t> m_isReached{0};
};

} // namespace dorn::benchmarks
