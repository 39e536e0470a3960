// SPDX-License-Identifier: MIT
#include "RadWait.hpp"

#include "config/RadStore.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace dorn::testkit {
namespace {

using host::PerNode;
using host::RadDomain;
using host::RadStore;
using RealClock = std::chrono::steady_clock;

/// Stirs the waits when a time of the real clock has come, which the clock in use may not know.
class Alarm {
public:
    explicit Alarm(RealClock::time_point when)
        : m_thread([this, when](const std::stop_token& stop) { run(stop, when); })
    {
    }

private:
    void run(const std::stop_token& stop, RealClock::time_point when)
    {
        std::unique_lock lock(m_mutex);
        m_never.wait_until(lock, stop, when, [] { return false; });
        if (!stop.stop_requested()) {
            stirRadWaits();
        }
    }

    std::mutex m_mutex;
    std::condition_variable_any m_never;
    std::jthread m_thread;
};

bool hasValue(TAaConfigRadId id, std::uint32_t value)
{
    const RadDomain* const domain = PerNode<RadStore>::get().domain(static_cast<std::uint16_t>(id >> 16));
    const std::size_t index = id & 0xFFFFU;
    return domain && index < domain->size() && domain->value(index).load() == value;
}

} // namespace

bool waitForRad(TAaConfigRadId id, std::uint32_t value, Bound bound)
{
    return waitForRadChange([=] { return hasValue(id, value); }, bound);
}

bool waitForRadChange(const std::function<bool()>& isMet, Bound bound)
{
    if (isMet()) {
        return true;
    }
    host::SharedSignal& changes = PerNode<RadStore>::get().changes();
    const RealClock::time_point end = RealClock::now() + bound;
    const Alarm alarm(end);
    for (;;) {
        const std::uint32_t seen = changes.count();
        if (isMet()) {
            return true;
        }
        if (RealClock::now() >= end) {
            return false;
        }
        changes.waitBeyond(seen, host::noDeadline);
    }
}

void stirRadWaits()
{
    if (RadStore* const store = PerNode<RadStore>::ifOpen()) {
        store->changes().notify();
    }
}

} // namespace dorn::testkit
