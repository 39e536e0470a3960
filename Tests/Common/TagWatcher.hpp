// SPDX-License-Identifier: MIT
/// @file TagWatcher.hpp
/// A service that takes down its tag changes, and threads that wait for tags.
#pragma once

#include "Bound.hpp"
#include "ScriptedService.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace dorn::test {

class TagWatcher : public ScriptedService {
public:
    TagWatcher() = default;
    ~TagWatcher() override
    {
        for (const std::string& tag : std::list<std::string>(m_observedTags)) {
            UnSetObservedTag(tag);
        }
    }
    TagWatcher(const TagWatcher&) = delete;
    TagWatcher& operator=(const TagWatcher&) = delete;

    /// Called for every change before it is taken down.
    std::function<void(const std::string&, unsigned int)> onChange;

    void HandleConfigTagChange(std::string tag, unsigned int value) override
    {
        if (onChange) {
            onChange(tag, value);
        }
        const std::lock_guard lock(m_mutex);
        m_changes.push_back(tag + "=" + std::to_string(value));
        m_changed.notify_all();
    }

    /// The changes so far, "x=5".
    std::vector<std::string> changes() const
    {
        const std::lock_guard lock(m_mutex);
        return m_changes;
    }
    /// Waits until a change is @p wanted. @return false when none has come in time.
    [[nodiscard]] bool waitFor(const std::string& wanted)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, testkit::generousBound, [&] {
            return std::find(m_changes.begin(), m_changes.end(), wanted) != m_changes.end();
        });
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_changes;
};

/// Looks until @p isMet, which takes an instant to come about. @return false when it has not in time.
template <class Condition>
[[nodiscard]] bool comesTrue(const Condition& isMet)
{
    const auto until = std::chrono::steady_clock::now() + testkit::generousBound;
    while (!isMet()) {
        if (std::chrono::steady_clock::now() >= until) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

} // namespace dorn::test
