// SPDX-License-Identifier: MIT
#include "eu/Eu.hpp"

#include "port/CancellationOff.hpp"
#include "syscom/CpidRegistry.hpp"

#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>
#include <new>
#include <pthread.h>
#include <utility>

namespace dorn::host {
namespace {

// An id is the use count of a place << 12 | the place.
constexpr unsigned placeBits = 12;
constexpr TAaProEuId placeMask = (1U << placeBits) - 1;
static_assert(eus::capacity == std::size_t{1} << placeBits);

struct Places {
    std::array<std::atomic<Eu*>, eus::capacity> eus{};
    std::mutex mutex;
    std::size_t made = 0;
    std::deque<std::size_t> free;
};

Places& places()
{
    static auto* const instance = new Places; // used by threads that outlive static objects
    return *instance;
}

thread_local Eu* currentEu = nullptr; // read without the guard of a variable that has a destructor
thread_local bool hasEnded = false;

/// Ends the thread's EU with the thread. What runs in the thread after that gets no other.
struct ThreadEu {
    Eu* eu = nullptr;
    ~ThreadEu()
    {
        hasEnded = true;
        if (eu) {
            eus::release(*std::exchange(eu, nullptr));
        }
    }
};

thread_local ThreadEu threadEu;

TAaProEuId nextId(TAaProEuId last, std::size_t place)
{
    const TAaProEuId uses = (last >> placeBits) + 1;
    const TAaProEuId id = uses << placeBits | static_cast<TAaProEuId>(place);
    return (id >> placeBits) != 0 ? id : (1U << placeBits | static_cast<TAaProEuId>(place));
}

std::size_t takePlace(Places& all)
{
    if (!all.free.empty()) {
        const std::size_t place = all.free.front(); // the longest unused, so that ids come back as late as possible
        all.free.pop_front();
        return place;
    }
    if (all.made == eus::capacity) {
        return eus::capacity;
    }
    Eu* const eu = new (std::nothrow) Eu;
    if (!eu) {
        return eus::capacity;
    }
    all.eus[all.made].store(eu, std::memory_order_release);
    return all.made++;
}

} // namespace

Eu* eus::acquire(std::string_view name)
{
    Places& all = places();
    const std::lock_guard lock(all.mutex);
    const std::size_t place = takePlace(all);
    if (place == capacity) {
        return nullptr;
    }
    Eu& eu = *all.eus[place].load(std::memory_order_relaxed);
    eu.name.fill('\0');
    std::copy_n(name.begin(), std::min(name.size(), eu.name.size() - 1), eu.name.begin());
    eu.firstCpid.store(0);
    eu.lastId = nextId(eu.lastId, place);
    eu.queue.open(eu.lastId);
    eu.id.store(eu.lastId, std::memory_order_release);
    return &eu;
}

void eus::release(Eu& eu)
{
    const CancellationOff off; // what is given up closes descriptors, in destructors
    const TAaProEuId id = eu.id.load();
    eu.id.store(0); // first, so that nobody registers a cpid for it after they have been given up
    if (CpidRegistry* const registry = PerNode<CpidRegistry>::ifOpen()) {
        registry->releaseAll(id);
    }
    eu.queue.close();
    if (currentEu == &eu) {
        currentEu = nullptr;
    }
    Places& all = places();
    const std::lock_guard lock(all.mutex);
    all.free.push_back(id & placeMask);
}

Eu* eus::find(TAaProEuId id)
{
    Eu* const eu = places().eus[id & placeMask].load(std::memory_order_acquire);
    return eu && id != 0 && eu->id.load(std::memory_order_acquire) == id ? eu : nullptr;
}

void eus::adopt(Eu& eu)
{
    threadEu.eu = &eu;
    currentEu = &eu;
}

Eu* eus::currentIfAny() noexcept
{
    return currentEu;
}

Eu* eus::current()
{
    if (!currentEu && !hasEnded) {
        std::array<char, 16> name{};
        pthread_getname_np(pthread_self(), name.data(), name.size());
        if (Eu* const eu = acquire(name.data())) {
            adopt(*eu);
        }
    }
    return currentEu;
}

std::string_view currentEuName() noexcept
{
    return currentEu ? std::string_view(currentEu->name.data()) : std::string_view();
}

} // namespace dorn::host

TAaProEuId AaProEuCurrent()
{
    const dorn::host::Eu* const eu = dorn::host::eus::current();
    return eu ? eu->id.load(std::memory_order_relaxed) : 0;
}
