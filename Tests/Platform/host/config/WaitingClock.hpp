// SPDX-License-Identifier: MIT
/// @file WaitingClock.hpp
/// Sees the sleeps of a process.
#pragma once

#include "port/Clock.hpp"

#include <atomic>

namespace dorn::host::test {

/// The system's clock that counts sleeps on a word, and those among them that would end by themselves. In use as long
/// as it lives.
class WaitingClock : public Clock {
public:
    Nanoseconds monotonic() const override { return m_real.monotonic(); }
    Nanoseconds wall() const override { return m_real.wall(); }
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, Deadline until, bool shared) override
    {
        if (until != noDeadline) {
            m_timedSleeps.fetch_add(1);
        }
        m_sleeps.fetch_add(1);
        m_sleeps.notify_all();
        m_real.waitWhile(word, expected, until, shared);
    }
    int waitDescriptors(std::span<pollfd> entries, Deadline until) override
    {
        return m_real.waitDescriptors(entries, until);
    }

    /// Waits until there have been more than @p count sleeps; the latest may just be about to begin.
    void awaitSleepAfter(int count) { m_sleeps.wait(count); }
    int sleeps() const { return m_sleeps.load(); }
    int timedSleeps() const { return m_timedSleeps.load(); }

private:
    Clock& m_real = Clock::get();
    std::atomic<int> m_sleeps{0};
    std::atomic<int> m_timedSleeps{0};
    ClockScope m_scope{*this};
};

} // namespace dorn::host::test
