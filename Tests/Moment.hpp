// SPDX-License-Identifier: MIT
/// @file Moment.hpp
/// What one thread of a test waits for and another brings about.
#pragma once

#include "Bound.hpp"

#include <condition_variable>
#include <mutex>

namespace dorn::test {

/// Something that happens once.
class Moment {
public:
    void come()
    {
        const std::lock_guard lock(m_mutex);
        m_hasCome = true;
        m_changed.notify_all();
    }
    /// @return false when it has not come within the generous bound
    [[nodiscard]] bool waitFor()
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, testkit::generousBound, [this] { return m_hasCome; });
    }
    bool hasCome()
    {
        const std::lock_guard lock(m_mutex);
        return m_hasCome;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_hasCome = false;
};

} // namespace dorn::test
