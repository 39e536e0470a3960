// SPDX-License-Identifier: MIT
#include "fault/FaultStore.hpp"

#include "node/PerNode.hpp"

#include <array>
#include <atomic>

namespace dorn::board {

/// Zero means untold.
struct FaultStore::Content {
    struct Entry {
        std::atomic<std::uint64_t> order; ///< calls left << 32 | code
        std::atomic<std::uint32_t> given;
        std::atomic<std::uint32_t> after;
    };

    host::SharedStoreHeader store;
    std::array<Entry, driverFunctionNames.size()> entries;
};

namespace {

static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "shared between processes");

constexpr std::uint32_t magic = 0x44666C74; // "Dflt"
constexpr std::uint32_t layoutVersion = 2;

std::uint64_t orderOf(std::int32_t code, std::uint32_t left)
{
    return std::uint64_t{left} << 32 | static_cast<std::uint32_t>(code);
}

std::int32_t codeOf(std::uint64_t order)
{
    return static_cast<std::int32_t>(order & 0xFFFFFFFFU);
}

std::uint32_t leftOf(std::uint64_t order)
{
    return static_cast<std::uint32_t>(order >> 32);
}

/// Counts a call that is to work, if one still is.
bool takeWorking(std::atomic<std::uint32_t>& after)
{
    std::uint32_t left = after.load(std::memory_order_acquire);
    while (left != 0) {
        if (after.compare_exchange_weak(left, left - 1, std::memory_order_acq_rel)) {
            return true;
        }
    }
    return false;
}

} // namespace

FaultStore::FaultStore() : FaultStore(host::PerNode<host::RunDirectory>::get()) {}

FaultStore::FaultStore(const host::RunDirectory& directory)
    : m_store(directory, fileName, {magic, layoutVersion, sizeof(Content)})
{
    m_store.tryShare(sizeof(Content)); // whoever would replace the store learns that it is in use
}

void FaultStore::set(DriverFunction function, std::int32_t code, std::uint32_t times, std::uint32_t after)
{
    Content::Entry& entry = content().entries[function.number()];
    entry.order.store(0, std::memory_order_release); // what it was told before does not meet the new count
    entry.after.store(after, std::memory_order_relaxed);
    entry.given.store(0, std::memory_order_relaxed);
    entry.order.store(orderOf(code, times), std::memory_order_release);
}

void FaultStore::clear(DriverFunction function)
{
    content().entries[function.number()].order.store(0, std::memory_order_release);
}

std::optional<std::int32_t> FaultStore::take(DriverFunction function)
{
    Content::Entry& entry = content().entries[function.number()];
    std::uint64_t order = entry.order.load(std::memory_order_acquire);
    if (leftOf(order) != 0 && takeWorking(entry.after)) {
        return std::nullopt;
    }
    while (leftOf(order) != 0) {
        const std::uint32_t left = leftOf(order) == always ? always : leftOf(order) - 1;
        if (entry.order.compare_exchange_weak(order, orderOf(codeOf(order), left), std::memory_order_acq_rel)) {
            entry.given.fetch_add(1, std::memory_order_relaxed);
            return codeOf(order);
        }
    }
    return std::nullopt;
}

std::vector<DriverFault> FaultStore::list() const
{
    std::vector<DriverFault> faults;
    for (std::size_t number = 0; number < driverFunctionNames.size(); ++number) {
        const Content::Entry& entry = content().entries[number];
        if (const std::uint64_t order = entry.order.load(std::memory_order_acquire); order != 0) {
            faults.push_back(
                {DriverFunction::at(number), codeOf(order), leftOf(order), entry.given.load(), entry.after.load()});
        }
    }
    return faults;
}

FaultStore::Content& FaultStore::content() const
{
    return *reinterpret_cast<Content*>(m_store.data());
}

} // namespace dorn::board
