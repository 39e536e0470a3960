// SPDX-License-Identifier: MIT
/// @file ManualClock.hpp
/// A clock that stands still until a test moves it.
#pragma once

#include "Bound.hpp"
#include "port/Clock.hpp"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <optional>
#include <span>

namespace dorn::testkit {

/// In use as long as it lives: time stamps and time-outs of this process then follow it.
///
///     ManualClock clock;
///     std::jthread taker([&] { AaSemTake(sem, 5'000'000); });
///     ASSERT_TRUE(clock.waitForSleepers());   // it waits
///     clock.advance(std::chrono::seconds(5)); // its time has passed
///
/// It is made before anything waits and ends when nothing does; what waits without limit does not matter. Its functions
/// may be called from any thread. Bounds of the TestKit's own waits are real time.
class ManualClock : public host::Clock {
public:
    /// @param wall the wall-clock time to begin with; without it 2025-01-01 00:00 UTC
    explicit ManualClock(host::Nanoseconds wall = std::chrono::seconds(1'735'689'600));
    /// Lets those who wait still for a deadline go, as if it had passed.
    ~ManualClock() override;

    /// Moves both clocks on. When it returns, everybody whose deadline has passed has been woken and has left its wait.
    void advance(host::Nanoseconds by);
    /// Sets the wall clock alone, forwards or back, as an operator or a time server does.
    void setWall(host::Nanoseconds wall);

    /// Waits until at least @p count threads wait for a deadline that lies ahead.
    /// @return false when they do not within @p bound of real time.
    [[nodiscard]] bool waitForSleepers(std::size_t count = 1, Bound bound = generousBound);
    /// The earliest deadline for which somebody waits.
    std::optional<host::Deadline> nextDeadline() const;

    /// Stands still until advance().
    host::Nanoseconds monotonic() const override;
    /// Goes with monotonic().
    host::Nanoseconds wall() const override;
    /// Waits until the word is changed and woken, or the time has been advanced to @p until.
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, host::Deadline until,
                   bool shared) override;
    /// Waits until a descriptor is ready, or the time has been advanced to @p until.
    int waitDescriptors(std::span<pollfd> entries, host::Deadline until) override;

private:
    struct Sleeper;
    class Registration;

    void wakeExpired(std::unique_lock<std::mutex>& lock);
    void sleepOn(std::span<const pollfd> entries, host::Deadline until);

    host::Clock& m_real{host::Clock::get()};
    mutable std::mutex m_mutex;
    std::condition_variable m_changed; ///< a sleeper has come or gone
    std::list<Sleeper> m_sleepers;
    host::Nanoseconds m_monotonic;
    host::Nanoseconds m_wall;
    host::ClockScope m_scope{*this};
};

} // namespace dorn::testkit
