// SPDX-License-Identifier: MIT
#include "ManualClock.hpp"

#include "port/Descriptor.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <span>
#include <sys/eventfd.h>
#include <system_error>
#include <vector>

namespace dorn::testkit {
namespace {

using host::Deadline;
using host::Nanoseconds;
using host::noDeadline;

/// Uptime of a board on which everything has started.
constexpr Nanoseconds firstMonotonic = std::chrono::hours(1);
constexpr Deadline atOnce{0};

/// Makes a thread return from `poll`, for good.
class Bell {
public:
    Bell() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        if (!m_event) {
            throw std::system_error(errno, std::generic_category(), "manual clock");
        }
    }
    int descriptor() const { return m_event.get(); }

private:
    const host::Descriptor m_event;
};

} // namespace

/// The clock that the process sees. It is kept when the test's is gone: a thread may have been about to look at it, and
/// then finds that every deadline has passed.
class ManualClock::Hands final : public host::Clock {
public:
    static Hands& start(Nanoseconds wall);
    /// Lets sleepers go; the clock before is in use again.
    void stop();

    void advance(Nanoseconds by);
    void setWall(Nanoseconds wall);
    bool waitForSleepers(std::size_t count, Bound bound);
    std::optional<Deadline> nextDeadline() const;

    Nanoseconds monotonic() const override;
    Nanoseconds wall() const override;
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, Deadline until, bool shared) override;
    int waitDescriptors(std::span<pollfd> entries, Deadline until) override;

private:
    struct Sleeper;
    class Registration;

    explicit Hands(Nanoseconds wall) : m_wall(wall) {}
    void wakeExpired(std::unique_lock<std::mutex>& lock);
    void sleepOn(std::span<const pollfd> entries, Deadline until);

    host::Clock& m_real{host::Clock::get()};
    mutable std::mutex m_mutex;
    std::condition_variable m_changed; ///< a sleeper has come or gone
    std::list<Sleeper> m_sleepers;
    Nanoseconds m_monotonic = firstMonotonic;
    Nanoseconds m_wall;
    std::optional<host::ClockScope> m_scope{std::in_place, *this};
};

/// A thread that waits for a deadline: on a futex word, or in `poll` on some descriptor and its bell.
struct ManualClock::Hands::Sleeper {
    Deadline until;
    std::atomic<std::uint32_t>* word = nullptr;
    bool isShared = false;
    int bell = -1;

    void wake() const
    {
        if (word) {
            host::wakeWaiters(*word, INT_MAX, isShared);
        } else {
            eventfd_write(bell, 1);
        }
    }
};

/// Has the clock know a sleeper whose deadline lies ahead, while this object lives; also when its thread is cancelled.
class ManualClock::Hands::Registration {
public:
    Registration(Hands& clock, const Sleeper& sleeper) : m_clock(clock)
    {
        const std::lock_guard lock(m_clock.m_mutex);
        if (sleeper.until > m_clock.m_monotonic) {
            m_place = m_clock.m_sleepers.insert(m_clock.m_sleepers.end(), sleeper);
            m_clock.m_changed.notify_all();
        }
    }
    ~Registration()
    {
        if (isAhead()) {
            const std::lock_guard lock(m_clock.m_mutex);
            m_clock.m_sleepers.erase(*m_place);
            m_clock.m_changed.notify_all();
        }
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    bool isAhead() const { return m_place.has_value(); }

private:
    Hands& m_clock;
    std::optional<std::list<Sleeper>::iterator> m_place;
};

ManualClock::Hands& ManualClock::Hands::start(Nanoseconds wall)
{
    static std::mutex mutex;
    static auto& all = *new std::list<std::unique_ptr<Hands>>; // used by threads that outlive static objects
    const std::lock_guard lock(mutex);
    return *all.emplace_back(new Hands(wall));
}

void ManualClock::Hands::stop()
{
    std::unique_lock lock(m_mutex);
    m_monotonic = noDeadline;
    wakeExpired(lock);
    m_scope.reset();
}

void ManualClock::Hands::advance(Nanoseconds by)
{
    std::unique_lock lock(m_mutex);
    m_monotonic += by;
    m_wall += by;
    wakeExpired(lock);
}

void ManualClock::Hands::wakeExpired(std::unique_lock<std::mutex>& lock)
{
    // A thread that has looked at the clock but does not sleep on its word yet misses a wake-up, hence the repetition.
    constexpr std::chrono::milliseconds retry(1);
    const auto isExpired = [this](const Sleeper& sleeper) { return sleeper.until <= m_monotonic; };
    while (std::any_of(m_sleepers.begin(), m_sleepers.end(), isExpired)) {
        for (const Sleeper& sleeper : m_sleepers) {
            if (isExpired(sleeper)) {
                sleeper.wake();
            }
        }
        m_changed.wait_for(lock, retry);
    }
}

void ManualClock::Hands::setWall(Nanoseconds wall)
{
    const std::lock_guard lock(m_mutex);
    m_wall = wall;
}

bool ManualClock::Hands::waitForSleepers(std::size_t count, Bound bound)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, bound, [&] { return m_sleepers.size() >= count; });
}

std::optional<Deadline> ManualClock::Hands::nextDeadline() const
{
    const std::lock_guard lock(m_mutex);
    const auto first = std::min_element(m_sleepers.begin(), m_sleepers.end(),
                                        [](const Sleeper& a, const Sleeper& b) { return a.until < b.until; });
    return first == m_sleepers.end() ? std::nullopt : std::optional(first->until);
}

Nanoseconds ManualClock::Hands::monotonic() const
{
    const std::lock_guard lock(m_mutex);
    return m_monotonic;
}

Nanoseconds ManualClock::Hands::wall() const
{
    const std::lock_guard lock(m_mutex);
    return m_wall;
}

void ManualClock::Hands::waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, Deadline until,
                                   bool shared)
{
    if (until == noDeadline) {
        m_real.waitWhile(word, expected, noDeadline, shared);
        return;
    }
    const Registration registration(*this, {.until = until, .word = &word, .isShared = shared});
    if (registration.isAhead()) {
        m_real.waitWhile(word, expected, noDeadline, shared);
    }
}

int ManualClock::Hands::waitDescriptors(std::span<pollfd> entries, Deadline until)
{
    if (until == noDeadline) {
        return m_real.waitDescriptors(entries, noDeadline);
    }
    sleepOn(entries, until);
    return m_real.waitDescriptors(entries, atOnce);
}

void ManualClock::Hands::sleepOn(std::span<const pollfd> entries, Deadline until)
{
    if (until <= monotonic()) {
        return; // the usual look without waiting; needs no bell
    }
    const Bell bell;
    std::vector<pollfd> withBell(entries.begin(), entries.end());
    withBell.push_back({bell.descriptor(), POLLIN, 0});
    const Registration registration(*this, {.until = until, .bell = bell.descriptor()});
    if (registration.isAhead()) {
        m_real.waitDescriptors(withBell, noDeadline);
    }
}

ManualClock::ManualClock(Nanoseconds wall) : m_hands(Hands::start(wall)) {}

ManualClock::~ManualClock()
{
    m_hands.stop();
}

void ManualClock::advance(Nanoseconds by)
{
    m_hands.advance(by);
}

void ManualClock::setWall(Nanoseconds wall)
{
    m_hands.setWall(wall);
}

bool ManualClock::waitForSleepers(std::size_t count, Bound bound)
{
    return m_hands.waitForSleepers(count, bound);
}

std::optional<Deadline> ManualClock::nextDeadline() const
{
    return m_hands.nextDeadline();
}

Nanoseconds ManualClock::monotonic() const
{
    return m_hands.monotonic();
}

Nanoseconds ManualClock::wall() const
{
    return m_hands.wall();
}

} // namespace dorn::testkit
