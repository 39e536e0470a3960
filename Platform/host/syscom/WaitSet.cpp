// SPDX-License-Identifier: MIT
#include "syscom/WaitSet.hpp"

#include <algorithm>
#include <cerrno>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace dorn::host {
namespace {

/// How long sources are left alone when one of them cannot be served.
constexpr std::chrono::milliseconds holdOffTime{10};

} // namespace

WaitSet::WaitSet() : m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!m_bell) {
        throw std::system_error(errno, std::generic_category(), "message queue");
    }
    m_watched = {{{m_bell.get(), POLLIN, 0}}, {nullptr}};
    m_waitedFor = m_watched;
}

void WaitSet::ring() noexcept
{
    const int saved = errno;
    const std::uint64_t one = 1;
    syscall(SYS_write, m_bell.get(), &one, sizeof one); // unlike `write` no cancellation point: nobody waits here
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
    takeOverChanges();
    int ready = Clock::get().waitDescriptors(m_waitedFor.descriptors, until);
    if (ready < 0) {
        holdOff();
        return;
    }
    if (ready > 0 && m_waitedFor.descriptors.front().revents != 0) {
        silenceBell();
        --ready;
    }
    if (ready > 0) {
        serveReadable();
    }
}

void WaitSet::takeOverChanges()
{
    if (m_changes.load(std::memory_order_acquire) != m_changesKnown) {
        const std::lock_guard lock(m_mutex);
        m_waitedFor = m_watched;
        m_changesKnown = m_changes.load(std::memory_order_relaxed);
    }
}

void WaitSet::serveReadable()
{
    const std::lock_guard lock(m_mutex);
    if (m_changes.load(std::memory_order_relaxed) != m_changesKnown) {
        return; // a source may have ended; whatever is readable is found so again
    }
    const std::size_t count = m_waitedFor.sources.size() - 1;
    ++m_turns; // another is the first each time, as the first may leave no room for what the others have
    for (std::size_t offset = 0; offset < count; ++offset) {
        const std::size_t place = 1 + (m_turns + offset) % count;
        if (m_waitedFor.descriptors[place].revents != 0) {
            m_lastServed = m_waitedFor.sources[place];
            m_lastServed->onReadable();
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
    silenceBell();
    if (!isRung.load()) {
        Clock::get().waitDescriptor(m_bell.get(), POLLIN, until);
    }
}

void WaitSet::silenceBell()
{
    std::uint64_t rings = 0;
    [[maybe_unused]] const ssize_t drained = read(m_bell.get(), &rings, sizeof rings);
}

void WaitSet::add(int descriptor, WaitSource& source)
{
    const std::lock_guard lock(m_mutex);
    m_watched.descriptors.reserve(m_watched.descriptors.size() + 1); // so that both grow or neither
    m_watched.sources.push_back(&source);
    m_watched.descriptors.push_back({descriptor, POLLIN, 0});
    noteChange();
}

void WaitSet::remove(int descriptor)
{
    m_lastServed = nullptr;
    auto& [descriptors, sources] = m_watched;
    const auto found = std::find_if(descriptors.begin(), descriptors.end(),
                                    [descriptor](const pollfd& entry) { return entry.fd == descriptor; });
    if (found == descriptors.end()) {
        return;
    }
    sources.erase(sources.begin() + (found - descriptors.begin()));
    descriptors.erase(found);
    noteChange();
}

/// Has the waiting thread look again: it would not notice the new, and keep the old from being closed.
void WaitSet::noteChange()
{
    m_sourceCount.store(m_watched.sources.size() - 1, std::memory_order_relaxed);
    m_changes.fetch_add(1, std::memory_order_release);
    ring();
}

} // namespace dorn::host
