// SPDX-License-Identifier: MIT
/// @file ManualClock.hpp
/// A clock that stands still until a test moves it.
#pragma once

#include "Bound.hpp"
#include "port/Clock.hpp"

#include <chrono>
#include <cstddef>
#include <optional>

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
class ManualClock {
public:
    /// @param wall the wall-clock time to begin with; without it 2025-01-01 00:00 UTC
    explicit ManualClock(host::Nanoseconds wall = std::chrono::seconds(1'735'689'600));
    /// Lets those who wait still for a deadline go, as if it had passed.
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

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
    host::Nanoseconds monotonic() const;
    /// Goes with monotonic().
    host::Nanoseconds wall() const;

private:
    class Hands;

    Hands& m_hands;
};

} // namespace dorn::testkit
