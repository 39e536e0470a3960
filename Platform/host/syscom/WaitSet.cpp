// SPDX-License-Identifier: MIT
#include "syscom/WaitSet.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr int eventsAtOnce = 16;

/// How long sources are left alone when one of them cannot be served.
constexpr std::chrono::milliseconds holdOffTime{10};

} // namespace

WaitSet::WaitSet() : m_epoll(epoll_create1(EPOLL_CLOEXEC)), m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // Edge-triggered, so that a ring costs the waiter no read.
    epoll_event event{EPOLLIN | EPOLLET, {nullptr}};
    if (m_epoll < 0 || m_bell < 0 || epoll_ctl(m_epoll, EPOLL_CTL_ADD, m_bell, &event) != 0) {
        const int error = errno;
        close(m_epoll);
        close(m_bell);
        throw std::system_error(error, std::generic_category(), "message queue");
    }
}

WaitSet::~WaitSet()
{
    close(m_epoll);
    close(m_bell);
}

void WaitSet::ring() noexcept
{
    const int saved = errno;
    const std::uint64_t one = 1;
    syscall(SYS_write, m_bell, &one, sizeof one); // unlike `write` no cancellation point: nobody waits here
    errno = saved;
}

void WaitSet::holdOff()
{
    m_heldOffUntil.store((Clock::get().monotonic() + holdOffTime).count(), std::memory_order_relaxed);
}

/// Waits while the sources are to be left alone. @return false when they still are.
bool WaitSet::isServing(Deadline until)
{
    const Deadline end(m_heldOffUntil.load(std::memory_order_relaxed));
    if (end == Deadline(0)) {
        return true;
    }
    if (until != Deadline(0)) {
        Clock::get().waitDescriptor(-1, 0, std::min(until, end)); // on none: a ring stays for the wait that follows
    }
    if (Clock::get().monotonic() < end) {
        return false;
    }
    m_heldOffUntil.store(0, std::memory_order_relaxed);
    return true;
}

void WaitSet::wait(Deadline until)
{
    if (!isServing(until)) {
        return;
    }
    std::array<epoll_event, eventsAtOnce> events; // NOLINT: filled by the call
    const std::uint32_t removalsBefore = m_removals.load(std::memory_order_acquire);
    const int count = Clock::get().waitEvents(m_epoll, events.data(), eventsAtOnce, until);
    if (count == 0 || (count == 1 && !events[0].data.ptr)) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (m_removals.load(std::memory_order_relaxed) != removalsBefore) {
        return; // an event may name a source that has ended; the others are reported again
    }
    for (int index = 0; index < count; ++index) {
        if (auto* const source = static_cast<WaitSource*>(events[static_cast<std::size_t>(index)].data.ptr)) {
            m_lastServed = source;
            source->onReadable();
        }
    }
}

void WaitSet::serveLast()
{
    if (!isServing(Deadline(0))) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (m_lastServed) {
        m_lastServed->onReadable();
    }
}

void WaitSet::waitForRing(Deadline until, const std::atomic<bool>& isRung)
{
    std::uint64_t rings = 0;
    [[maybe_unused]] const ssize_t drained = read(m_bell, &rings, sizeof rings);
    if (!isRung.load()) {
        Clock::get().waitDescriptor(m_bell, POLLIN, until);
    }
}

bool WaitSet::add(int descriptor, WaitSource& source)
{
    const std::lock_guard lock(m_mutex); // what the source is was written before the waiting thread looks at it
    epoll_event event{EPOLLIN, {&source}};
    if (epoll_ctl(m_epoll, EPOLL_CTL_ADD, descriptor, &event) != 0) {
        return false;
    }
    m_sources.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void WaitSet::remove(int descriptor)
{
    m_lastServed = nullptr;
    if (epoll_ctl(m_epoll, EPOLL_CTL_DEL, descriptor, nullptr) == 0) { // else it could not be added
        m_sources.fetch_sub(1, std::memory_order_relaxed);
    }
    // After the removal: who has seen this count is told of no source that has ended.
    m_removals.fetch_add(1, std::memory_order_acq_rel);
}

} // namespace dorn::host
