// SPDX-License-Identifier: MIT
/// @file TagRecorder.hpp
/// Takes down what observers are told.
#pragma once

#include "AaConfigTag.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace dorn::host::test {

/// Collects calls as "name=value" and waits for them. May be used from any thread.
class TagRecorder {
public:
    void add(const std::string& name, const void* value, std::size_t length)
    {
        const std::lock_guard lock(m_mutex);
        m_calls.push_back(name + "=" + std::string(static_cast<const char*>(value), length));
        m_changed.notify_all();
    }
    /// The calls so far, once there are at least @p count, or 20 s have passed.
    std::vector<std::string> waitFor(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(20), [this, count] { return m_calls.size() >= count; });
        return m_calls;
    }
    std::vector<std::string> calls() const
    {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_calls.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_calls;
};

/// What a thread waits for, once.
class Gate {
public:
    void open()
    {
        const std::lock_guard lock(m_mutex);
        m_isOpen = true;
        m_changed.notify_all();
    }
    /// @return false when it has not been opened within 100 s, less than the whole test has.
    [[nodiscard]] bool pass()
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(100), [this] { return m_isOpen; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpen = false;
};

} // namespace dorn::host::test
