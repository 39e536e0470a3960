// SPDX-License-Identifier: MIT
/// @file WaitSet.hpp
/// What one EU waits for: descriptors, and being rung by other threads.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace dorn::host {

/// A descriptor that an EU watches.
class WaitSource {
public:
    virtual ~WaitSource() = default;
    /// The descriptor is readable or hung up. Runs in the waiting EU with the set's mutex held; may end this source
    /// only.
    virtual void onReadable() = 0;
};

/// An epoll descriptor with a bell. One thread waits; any thread rings, adds and removes.
class WaitSet {
public:
    /// @throws std::system_error when descriptors have run out.
    WaitSet();
    ~WaitSet();
    WaitSet(const WaitSet&) = delete;
    WaitSet& operator=(const WaitSet&) = delete;

    /// Makes the waiting, or else the next, wait() return. Safe in a signal handler.
    void ring() noexcept;

    /// Waits until a source is readable or the bell has been rung, at most until @p until, and serves the readable
    /// sources.
    void wait(Deadline until);

    /// Serves the source that was served last, readable or not: a stream of messages from one peer costs no system call
    /// for finding out whose they are.
    void serveLast();

    /// Waits until the bell has been rung since @p isRung was last false, at most until @p until; serves nothing.
    void waitForRing(Deadline until, const std::atomic<bool>& isRung);

    bool hasSources() const { return m_sources.load(std::memory_order_relaxed) > 0; }

    /// @return false with `errno` set when the descriptor cannot be watched.
    bool add(int descriptor, WaitSource& source);
    /// To be called with mutex() held, before the source ends.
    void remove(int descriptor);
    /// Called by a source that cannot serve its peers now: no source is served for a moment.
    void holdOff();

    /// Guards the sources: held while they are served, to be held while they are added or ended by another thread.
    std::recursive_mutex& mutex() { return m_mutex; }

private:
    bool isServing(Deadline until);

    std::recursive_mutex m_mutex;
    WaitSource* m_lastServed = nullptr; ///< null when it is not in the set any more; guarded by m_mutex
    std::atomic<std::uint32_t> m_removals{0};
    std::atomic<std::int32_t> m_sources{0};
    std::atomic<std::int64_t> m_heldOffUntil{0}; ///< on Clock::monotonic()'s scale, ns; 0 when it is not
    int m_epoll;
    int m_bell;
};

} // namespace dorn::host
