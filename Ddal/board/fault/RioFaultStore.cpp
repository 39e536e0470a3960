// SPDX-License-Identifier: MIT
#include "fault/RioFaultStore.hpp"

#include "description/BoardFailure.hpp"
#include "node/PerNode.hpp"

#include <array>
#include <atomic>

namespace dorn::board {

/// An entry belongs to one device from its first use on.
struct RioFaultStore::Entry {
    std::atomic<std::uint64_t> device; ///< 0: free
    std::atomic<std::uint32_t> corruptLeft;
    std::atomic<std::uint32_t> corrupted;
    std::atomic<std::uint32_t> delay; ///< milli-seconds
    std::atomic<std::uint32_t> isTold;
};

struct RioFaultStore::Content {
    host::SharedStoreHeader store;
    std::array<Entry, most> entries;
};

namespace {

constexpr std::uint32_t magic = 0x4472696F; // "Drio"
constexpr std::uint32_t layoutVersion = 1;

/// Never 0.
std::uint64_t keyOf(const RioAddress& device)
{
    return std::uint64_t{1} << 63 | std::uint64_t{device.port} << 32 | device.device;
}

RioAddress addressOf(std::uint64_t key)
{
    return {static_cast<std::uint32_t>(key >> 32 & 0x7FFFFFFFU), static_cast<std::uint32_t>(key)};
}

} // namespace

RioFaultStore::RioFaultStore() : RioFaultStore(host::PerNode<host::RunDirectory>::get()) {}

RioFaultStore::RioFaultStore(const host::RunDirectory& directory)
    : m_store(directory, fileName, {magic, layoutVersion, sizeof(Content)})
{
    m_store.tryShare(sizeof(Content)); // whoever would replace the store learns that it is in use
}

void RioFaultStore::corrupt(const RioAddress& device, std::uint32_t copies)
{
    Entry& entry = findOrMake(device);
    entry.corrupted.store(0, std::memory_order_relaxed);
    entry.corruptLeft.store(copies, std::memory_order_release);
    entry.isTold.store(1, std::memory_order_release);
}

void RioFaultStore::slow(const RioAddress& device, std::chrono::milliseconds delay)
{
    Entry& entry = findOrMake(device);
    entry.delay.store(static_cast<std::uint32_t>(delay.count()), std::memory_order_release);
    entry.isTold.store(1, std::memory_order_release);
}

void RioFaultStore::heal(const RioAddress& device)
{
    if (Entry* const entry = find(device)) {
        entry->corruptLeft.store(0, std::memory_order_release);
        entry->delay.store(0, std::memory_order_release);
        entry->isTold.store(0, std::memory_order_release);
    }
}

bool RioFaultStore::takeCorruption(const RioAddress& device)
{
    Entry* const entry = find(device);
    std::uint32_t left = entry ? entry->corruptLeft.load(std::memory_order_acquire) : 0;
    while (left != 0) {
        if (entry->corruptLeft.compare_exchange_weak(left, left == always ? always : left - 1,
                                                     std::memory_order_acq_rel)) {
            entry->corrupted.fetch_add(1, std::memory_order_relaxed);
            return true;
        }
    }
    return false;
}

std::chrono::milliseconds RioFaultStore::delayOf(const RioAddress& device) const
{
    const Entry* const entry = find(device);
    return std::chrono::milliseconds(entry ? entry->delay.load(std::memory_order_acquire) : 0);
}

std::vector<RioFault> RioFaultStore::list() const
{
    std::vector<RioFault> faults;
    for (const Entry& entry : content().entries) {
        if (entry.isTold.load(std::memory_order_acquire) != 0) {
            faults.push_back({addressOf(entry.device.load()), entry.corruptLeft.load(), entry.corrupted.load(),
                              std::chrono::milliseconds(entry.delay.load())});
        }
    }
    return faults;
}

RioFaultStore::Entry* RioFaultStore::find(const RioAddress& device) const
{
    for (Entry& entry : content().entries) {
        const std::uint64_t key = entry.device.load(std::memory_order_acquire);
        if (key == keyOf(device)) {
            return &entry;
        }
        if (key == 0) {
            break; // entries are taken in their order
        }
    }
    return nullptr;
}

RioFaultStore::Entry& RioFaultStore::findOrMake(const RioAddress& device)
{
    for (Entry& entry : content().entries) {
        std::uint64_t key = 0;
        if (entry.device.compare_exchange_strong(key, keyOf(device), std::memory_order_acq_rel) ||
            key == keyOf(device)) {
            return entry;
        }
    }
    throw BoardFailure(DDAL_ERROR_NO_RESOURCE,
                       "only " + std::to_string(most) + " RapidIO devices can be told what goes wrong with them");
}

RioFaultStore::Content& RioFaultStore::content() const
{
    return *reinterpret_cast<Content*>(m_store.data());
}

} // namespace dorn::board
