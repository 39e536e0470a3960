// SPDX-License-Identifier: MIT
#include "TagWait.hpp"

#include "seam/RealSeam.hpp"

#include <condition_variable>
#include <map>
#include <mutex>

namespace dorn::testkit {
namespace {

/// Those who wait for tags; what was set is looked up anew when they are stirred.
struct Waits {
    std::mutex mutex;
    std::condition_variable changed;
    std::uint64_t sets = 0;
    std::map<std::string, unsigned> waiters;
};

Waits& waits()
{
    static auto* const instance = new Waits; // observers may run after static objects have ended
    return *instance;
}

void noteSet(const char*, const void*, std::uint32_t)
{
    const std::lock_guard lock(waits().mutex);
    ++waits().sets;
    waits().changed.notify_all();
}

/// Keeps a tag observed as long as somebody waits for it.
class Observed {
public:
    explicit Observed(const std::string& name) : m_name(name)
    {
        const std::lock_guard lock(waits().mutex);
        if (waits().waiters[m_name]++ == 0) {
            __real_AaConfigTagRegister(m_name.c_str(), noteSet);
        }
    }
    ~Observed()
    {
        {
            const std::lock_guard lock(waits().mutex);
            if (--waits().waiters[m_name] != 0) {
                return;
            }
            waits().waiters.erase(m_name);
        }
        // Outside of the lock, for which the observer may wait.
        __real_AaConfigTagUnregister(m_name.c_str(), noteSet);
    }
    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;

private:
    const std::string m_name;
};

bool hasValue(const std::string& name, const std::string& value)
{
    void* found = nullptr;
    std::uint32_t length = 0;
    if (__real_AaConfigTagGet(name.c_str(), &found, &length) != EAaConfigTagStatus_Ok) {
        return false;
    }
    const bool isIt = std::string(static_cast<const char*>(found), length) == value;
    __real_AaMemUnRef(found);
    return isIt;
}

} // namespace

bool waitForTag(const std::string& name, const std::string& value, Bound bound)
{
    const Observed observed(name);
    const auto until = std::chrono::steady_clock::now() + bound;
    for (;;) {
        std::unique_lock lock(waits().mutex);
        const std::uint64_t before = waits().sets;
        lock.unlock();
        if (hasValue(name, value)) {
            return true;
        }
        lock.lock();
        if (!waits().changed.wait_until(lock, until, [&] { return waits().sets != before; })) {
            return false;
        }
    }
}

bool waitForTag(const std::string& name, std::uint32_t value, Bound bound)
{
    return waitForTag(name, std::string(reinterpret_cast<const char*>(&value), sizeof value), bound);
}

} // namespace dorn::testkit
