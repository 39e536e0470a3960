// SPDX-License-Identifier: MIT
/// @file WaitSet.hpp
/// What one EU waits for: descriptors, and being rung by other threads.
#pragma once

#include "port/Clock.hpp"
#include "port/Descriptor.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace dorn::host {

/// A descriptor that an EU watches.
class WaitSource {
public:
    virtual ~WaitSource() = default;
    /// The descriptor is readable or hung up. Runs in the waiting EU with the set's mutex held; may end this source
    /// only.
    virtual void onReadable() = 0;
};

/// Descriptors and a bell. One thread waits; any thread rings, adds and removes.
///
/// The thread waits with `poll`: who sends to a descriptor while it works finds nobody registered there, and wakes
/// nobody. What it waits for is a copy, renewed after a change, so that nothing is locked while it sleeps.
class WaitSet {
public:
    /// @throws std::system_error when descriptors have run out.
    WaitSet();
    WaitSet(const WaitSet&) = delete;
    WaitSet& operator=(const WaitSet&) = delete;

    /// Makes the waiting, or else the next, wait() return. Safe in a signal handler.
    void ring() noexcept;

    /// Waits until a source is readable or the bell has been rung, at most until @p until, and serves the readable
    /// sources. May return early for no reason.
    void wait(Deadline until);

    /// Serves the source that was served last, readable or not: a stream of messages from one peer costs no system call
    /// for finding out whose they are.
    void serveLast();

    /// Waits until the bell has been rung since @p isRung was last false, at most until @p until; serves nothing.
    void waitForRing(Deadline until, const std::atomic<bool>& isRung);

    bool hasSources() const { return m_sourceCount.load(std::memory_order_relaxed) > 0; }

    /// Has @p source served from now on, also by a thread that waits already, until remove().
    void add(int descriptor, WaitSource& source);
    /// To be called with mutex() held, before the source ends and its descriptor is closed. Nothing happens to a
    /// descriptor that has not been added.
    void remove(int descriptor);
    /// Called by a source that cannot serve its peers now: no source is served for a moment.
    void holdOff();

    /// Guards the sources: held while they are served, to be held while they are added or ended by another thread.
    std::recursive_mutex& mutex() { return m_mutex; }

private:
    /// Entries of `poll` and, at the same places, what they stand for. The first is the bell, with null.
    struct Watched {
        std::vector<pollfd> descriptors;
        std::vector<WaitSource*> sources;
    };

    bool isServing(Deadline until);
    void noteChange();
    void takeOverChanges();
    void serveReadable();
    void silenceBell();

    const Descriptor m_bell;
    std::recursive_mutex m_mutex;
    Watched m_watched;                  ///< guarded by m_mutex
    WaitSource* m_lastServed = nullptr; ///< null when it is not in the set any more; guarded by m_mutex
    std::atomic<std::uint32_t> m_changes{0};
    std::atomic<std::size_t> m_sourceCount{0};
    std::atomic<std::int64_t> m_heldOffUntil{0}; ///< on Clock::monotonic()'s scale, ns; 0 when it is not

    // The waiting thread's only.
    Watched m_waitedFor;
    std::uint32_t m_changesKnown = 0; ///< those that m_waitedFor has been renewed after
    std::size_t m_turns = 0;
};

} // namespace dorn::host
