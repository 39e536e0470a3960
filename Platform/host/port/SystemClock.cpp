// SPDX-License-Identifier: MIT
#include "port/Clock.hpp"

#include <cerrno>
#include <climits>
#include <ctime>
#include <linux/futex.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace dorn::host {
namespace {

Nanoseconds readClock(clockid_t id)
{
    timespec now{};
    clock_gettime(id, &now);
    return std::chrono::seconds(now.tv_sec) + Nanoseconds(now.tv_nsec);
}

timespec toTimespec(Nanoseconds duration)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    return {static_cast<time_t>(seconds.count()), static_cast<long>((duration - seconds).count())};
}

/// The time left until a deadline, never negative.
timespec timeLeft(Deadline until, Nanoseconds now)
{
    return toTimespec(until > now ? until - now : Nanoseconds(0));
}

class SystemClock final : public Clock {
public:
    Nanoseconds monotonic() const override { return readClock(CLOCK_MONOTONIC); }
    Nanoseconds wall() const override { return readClock(CLOCK_REALTIME); }

    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, Deadline until, bool shared) override
    {
        // FUTEX_WAIT_BITSET takes an absolute time of CLOCK_MONOTONIC, so an early wake costs no computation here.
        const int operation = FUTEX_WAIT_BITSET | (shared ? 0 : FUTEX_PRIVATE_FLAG);
        const timespec deadline = toTimespec(until);
        syscall(SYS_futex, &word, operation, expected, until == noDeadline ? nullptr : &deadline, nullptr,
                FUTEX_BITSET_MATCH_ANY);
    }

    int waitEvents(int epollDescriptor, epoll_event* events, int capacity, Deadline until) override
    {
        const int milliseconds = until == noDeadline ? -1 : 0;
        if (until == noDeadline || until <= Nanoseconds(0)) {
            return std::max(epoll_wait(epollDescriptor, events, capacity, milliseconds), 0);
        }
        const timespec left = timeLeft(until, monotonic());
        return std::max(epoll_pwait2(epollDescriptor, events, capacity, &left, nullptr), 0);
    }

    bool waitDescriptor(int descriptor, short events, Deadline until) override
    {
        pollfd entry{descriptor, events, 0};
        const timespec left = timeLeft(until, monotonic());
        return ppoll(&entry, 1, until == noDeadline ? nullptr : &left, nullptr) > 0;
    }
};

SystemClock systemClock;

} // namespace

constinit std::atomic<Clock*> Clock::s_current{&systemClock};

Deadline Clock::after(std::int64_t timeout) const
{
    return timeout < 0 ? noDeadline : monotonic() + std::chrono::microseconds(timeout);
}

void wakeWaiters(std::atomic<std::uint32_t>& word, int count, bool shared)
{
    syscall(SYS_futex, &word, FUTEX_WAKE | (shared ? 0 : FUTEX_PRIVATE_FLAG), count, nullptr, nullptr, 0);
}

ClockScope::ClockScope(Clock& clock) : m_previous(Clock::s_current.exchange(&clock)) {}

ClockScope::~ClockScope()
{
    Clock::s_current.store(m_previous);
}

} // namespace dorn::host
