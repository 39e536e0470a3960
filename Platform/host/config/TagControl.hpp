// SPDX-License-Identifier: MIT
/// @file TagControl.hpp
/// Which processes of the node observe tags, and how far each has read the journal.
#pragma once

#include "config/SharedSignal.hpp"
#include "node/SharedStore.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace dorn::host {

/// One process that observes tags. Lies in shared memory.
struct TagSlot {
    std::atomic<std::uint32_t> isActive; ///< whether sets are to be kept for the process
    SharedSignal signal;                 ///< moves on with every set, and when the process wakes its own thread
    std::atomic<std::uint64_t> cursor;   ///< the next set it will read
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "shared between processes");

/// The slots: the shared store `tags.control`. A process holds its slot's record lock as long as it lives, so that a
/// slot whose process was killed is known.
///
/// Functions marked (writer) are called by the holder of a TagWrite only: this is what makes "is anybody observing?"
/// and "begin to observe" one question at a time on the whole node.
class TagControl {
public:
    static constexpr std::size_t capacity = 1024;

    /// @throws EnvironmentError
    explicit TagControl(const RunDirectory& directory);
    /// Gives the own slot back.
    ~TagControl();
    TagControl(const TagControl&) = delete;
    TagControl& operator=(const TagControl&) = delete;

    /// Keeps other processes from opening the database.
    void lockOpening() const { m_store.lock(capacity); }
    void unlockOpening() const { m_store.unlock(capacity); }

    /// Gives this process a slot, not active; the one it has if it has one. (writer)
    /// @return null when all are taken.
    TagSlot* claim();

    /// Where the slowest living observer will read on; nothing when nobody observes. (writer)
    /// @param sequence the number that the next set gets
    std::optional<std::uint64_t> oldestCursor(std::uint64_t sequence);

    /// Forgets the observers that have died. (writer)
    void forgetDead();

    /// Wakes every process that observes.
    void notifyAll() const;

private:
    struct Content;
    Content& content() const;
    bool forgetIfDead(std::size_t index);

    SharedStore m_store;
    std::size_t m_own = capacity;
};

} // namespace dorn::host
