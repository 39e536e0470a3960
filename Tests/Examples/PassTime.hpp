// SPDX-License-Identifier: MIT
/// @file PassTime.hpp
/// Time for services whose simulated hardware moves by it.
#pragma once

#include "Bound.hpp"
#include "ManualClock.hpp"

#include <chrono>

namespace dorn::examples {

/// Whether somebody waits for a time to come.
inline bool isTimeAwaited(const testkit::ManualClock& clock)
{
    const auto next = clock.nextDeadline();
    return next && *next != host::noDeadline;
}

/// Lets time pass, from one deadline to the next, until @p isMet.
/// @return false when it is not within a generous bound of real time.
template <class Condition>
[[nodiscard]] bool passTimeUntil(testkit::ManualClock& clock, const Condition& isMet)
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (!isMet()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        const auto next = clock.nextDeadline();
        if (next && *next != host::noDeadline && *next > clock.monotonic()) {
            clock.advance(*next - clock.monotonic());
        }
    }
    return true;
}

} // namespace dorn::examples
