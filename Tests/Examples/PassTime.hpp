// SPDX-License-Identifier: MIT
/// @file PassTime.hpp
/// Time for services whose simulated hardware moves by it.
#pragma once

#include "Bound.hpp"
#include "EventThread.hpp"
#include "ManualClock.hpp"

#include <chrono>
#include <optional>

namespace dorn::examples {

/// The time for which somebody waits.
inline std::optional<host::Deadline> awaitedTime(const testkit::ManualClock& clock)
{
    const auto next = clock.nextDeadline();
    return next && *next != host::noDeadline ? next : std::nullopt;
}

/// Lets time pass, a step of the service's hardware after the other, until @p isMet. It is asked after every step, when
/// the events of that step have been delivered.
/// @return false when it is not met within a generous bound of real time.
template <class Condition>
[[nodiscard]] bool passTimeUntil(testkit::ManualClock& clock, const Condition& isMet)
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (std::chrono::steady_clock::now() < end) {
        const auto next = awaitedTime(clock); // armed when a step has raised its events
        {
            const EventThread delivered;
        }
        if (isMet()) {
            return true;
        }
        if (next && *next > clock.monotonic()) {
            clock.advance(*next - clock.monotonic());
        }
    }
    return false;
}

} // namespace dorn::examples
