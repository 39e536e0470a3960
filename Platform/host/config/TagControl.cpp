// SPDX-License-Identifier: MIT
#include "config/TagControl.hpp"

#include <algorithm>
#include <array>

namespace dorn::host {

struct TagControl::Content {
    SharedStoreHeader store;
    std::atomic<std::uint64_t> used; ///< slots in use lie before this one
    std::array<TagSlot, capacity> slots;

    std::size_t usedCount() const { return static_cast<std::size_t>(std::min<std::uint64_t>(used.load(), capacity)); }
};

namespace {

constexpr std::uint32_t magic = 0x444E5443; // "DNTC"
constexpr std::uint32_t layoutVersion = 1;

/// A slot that lies this far behind is looked at, each time it has fallen as far behind again: its process may be dead.
constexpr std::uint64_t suspiciousLag = 64;

} // namespace

TagControl::TagControl(const RunDirectory& directory)
    : m_store(directory, "tags.control", SharedStoreFormat{magic, layoutVersion, sizeof(Content)})
{
}

TagControl::~TagControl()
{
    if (m_own != capacity) {
        content().slots[m_own].isActive.store(0, std::memory_order_release);
    }
}

TagControl::Content& TagControl::content() const
{
    return *reinterpret_cast<Content*>(m_store.data());
}

TagSlot* TagControl::claim()
{
    Content& all = content();
    for (std::size_t index = 0; m_own == capacity && index < capacity; ++index) {
        if (m_store.tryLock(index)) {
            all.slots[index].isActive.store(0, std::memory_order_relaxed);
            all.slots[index].signal.reset();
            all.used.store(std::max<std::uint64_t>(all.used.load(), index + 1));
            m_own = index;
        }
    }
    return m_own != capacity ? &all.slots[m_own] : nullptr;
}

bool TagControl::forgetIfDead(std::size_t index)
{
    if (index == m_own || m_store.lockHolder(index) != 0) {
        return false;
    }
    content().slots[index].isActive.store(0, std::memory_order_release);
    return true;
}

std::optional<std::uint64_t> TagControl::oldestCursor(std::uint64_t sequence)
{
    const Content& all = content();
    std::optional<std::uint64_t> oldest;
    for (std::size_t index = 0, end = all.usedCount(); index < end; ++index) {
        const TagSlot& slot = all.slots[index];
        if (slot.isActive.load(std::memory_order_acquire) == 0) {
            continue;
        }
        const std::uint64_t cursor = slot.cursor.load(std::memory_order_acquire);
        const std::uint64_t lag = sequence > cursor ? sequence - cursor : 0;
        if (lag != 0 && lag % suspiciousLag == 0 && forgetIfDead(index)) {
            continue;
        }
        oldest = std::min(oldest.value_or(cursor), cursor);
    }
    return oldest;
}

void TagControl::forgetDead()
{
    Content& all = content();
    for (std::size_t index = 0, end = all.usedCount(); index < end; ++index) {
        if (all.slots[index].isActive.load(std::memory_order_acquire) != 0) {
            forgetIfDead(index);
        }
    }
}

void TagControl::notifyAll() const
{
    Content& all = content();
    for (std::size_t index = 0, end = all.usedCount(); index < end; ++index) {
        if (all.slots[index].isActive.load(std::memory_order_acquire) != 0) {
            all.slots[index].signal.notify();
        }
    }
}

} // namespace dorn::host
