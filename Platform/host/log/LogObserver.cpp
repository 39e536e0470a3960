// SPDX-License-Identifier: MIT
#include "log/LogObserver.hpp"

#include "log/LogObservers.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace dorn::host {
namespace {

struct Observers {
    std::shared_mutex mutex;
    std::vector<std::pair<int, LogObserver>> list;
    int lastNumber = 0;
    std::atomic<std::size_t> count{0};
};

Observers& observers()
{
    static auto* const instance = new Observers; // outlives every static object that may still print
    return *instance;
}

thread_local bool isObserving = false;

} // namespace

int addLogObserver(LogObserver observer)
{
    Observers& all = observers();
    const std::lock_guard lock(all.mutex);
    all.list.emplace_back(++all.lastNumber, std::move(observer));
    all.count.store(all.list.size(), std::memory_order_release);
    return all.lastNumber;
}

void removeLogObserver(int number)
{
    Observers& all = observers();
    const std::lock_guard lock(all.mutex);
    std::erase_if(all.list, [number](const auto& entry) { return entry.first == number; });
    all.count.store(all.list.size(), std::memory_order_release);
}

bool hasLogObservers() noexcept
{
    return observers().count.load(std::memory_order_acquire) != 0 && !isObserving;
}

void tellLogObservers(const LogLine& line)
{
    Observers& all = observers();
    const std::shared_lock lock(all.mutex);
    isObserving = true;
    for (const auto& [number, observer] : all.list) {
        observer(line);
    }
    isObserving = false;
}

} // namespace dorn::host
