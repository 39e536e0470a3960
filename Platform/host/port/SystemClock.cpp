// SPDX-License-Identifier: MIT
#include "port/Clock.hpp"

#include "port/FutexWait.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <limits>
#include <linux/futex.h>
#include <poll.h>
#include <pthread.h>
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
    constexpr std::int64_t greatest = std::numeric_limits<time_t>::max(); // 2038 where a `time_t` has 32 bits
    return {static_cast<time_t>(std::min<std::int64_t>(seconds.count(), greatest)),
            static_cast<long>((duration - seconds).count())};
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
        // A bare system call is no cancellation point, and the C library has no futex that is one. Nothing in this
        // function needs unwinding, and nothing may: the compiler takes it for one that never throws.
        int cancelType = PTHREAD_CANCEL_DEFERRED;
        pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, &cancelType);
        futexWait(word, operation, expected, until == noDeadline ? nullptr : &deadline);
        pthread_setcanceltype(cancelType, nullptr);
    }

    int waitDescriptors(std::span<pollfd> entries, Deadline until) override
    {
        int count = 0;
        do {
            count = pollOnce(entries, until);
        } while (count < 0 && errno == EINTR);
        return count;
    }

private:
    int pollOnce(std::span<pollfd> entries, Deadline until) const
    {
        if (until == noDeadline || until <= Deadline(0)) { // needs no time
            return poll(entries.data(), entries.size(), until == noDeadline ? -1 : 0);
        }
        const timespec left = timeLeft(until, monotonic());
        return ppoll(entries.data(), entries.size(), &left, nullptr);
    }
};

SystemClock systemClock;

} // namespace

constinit std::atomic<Clock*> Clock::s_current{&systemClock};

bool Clock::waitDescriptor(int descriptor, short events, Deadline until)
{
    pollfd entry{descriptor, events, 0};
    return waitDescriptors({&entry, 1}, until) > 0;
}

Deadline Clock::after(std::int64_t timeout) const
{
    if (timeout < 0) {
        return noDeadline;
    }
    const Nanoseconds now = monotonic();
    const auto greatest = std::chrono::duration_cast<std::chrono::microseconds>(noDeadline - now);
    return timeout >= greatest.count() ? noDeadline : now + std::chrono::microseconds(timeout);
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
