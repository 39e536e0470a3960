// SPDX-License-Identifier: MIT
/// @file Clock.hpp
/// The one clock: every time stamp and every wait with a time-out of the host platform goes through it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <span>

namespace dorn::host {

/// The scale of every time of the host platform. It holds 292 years to either side of its zero.
using Nanoseconds = std::chrono::nanoseconds;

/// A point in time on Clock::monotonic()'s scale until which a wait lasts.
using Deadline = Nanoseconds;
/// The deadline of a wait that only its event ends.
constexpr Deadline noDeadline = Deadline::max();

/// Tells the time and waits. A test or a tool puts another one in its place with ClockScope.
class Clock {
public:
    virtual ~Clock() = default;

    /// Time since the board started; never steps back.
    virtual Nanoseconds monotonic() const = 0;
    /// Time since the epoch, UTC.
    virtual Nanoseconds wall() const = 0;

    /// Sleeps while @p word holds @p expected, at most until @p until. May return early for no reason. Like the other
    /// waits a cancellation point.
    /// @param shared whether the word lies in memory that other processes map
    virtual void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, Deadline until, bool shared) = 0;

    /// Waits until one of the descriptors has one of the events that its entry asks for or fails, at most until
    /// @p until. The entries are those of `poll`; a negative descriptor is passed over. A signal does not end the wait.
    /// @return the number of entries with something in `revents`; 0 when the time has passed; at once -1 with `errno`
    /// set when they cannot be waited for, as when they are more than the process may have open.
    virtual int waitDescriptors(std::span<pollfd> entries, Deadline until) = 0;

    /// The same for one descriptor. @return whether it has one of the `poll` @p events, or has failed.
    bool waitDescriptor(int descriptor, short events, Deadline until);

    /// The clock in use.
    static Clock& get() { return *s_current.load(std::memory_order_acquire); }

    /// The deadline that lies @p timeout micro-seconds ahead; none for a negative time-out, and for one beyond the
    /// scale.
    Deadline after(std::int64_t timeout) const;

private:
    friend class ClockScope;
    static std::atomic<Clock*> s_current;
};

/// Wakes up to @p count threads that sleep in Clock::waitWhile() on @p word. May be called from a signal handler.
void wakeWaiters(std::atomic<std::uint32_t>& word, int count, bool shared);

/// Has another clock used as long as the scope lives. Made and ended while no other thread waits.
class ClockScope {
public:
    /// @param clock outlives the scope
    explicit ClockScope(Clock& clock);
    ~ClockScope();
    ClockScope(const ClockScope&) = delete;
    ClockScope& operator=(const ClockScope&) = delete;

private:
    Clock* m_previous;
};

} // namespace dorn::host
