// SPDX-License-Identifier: MIT
/// @file Mailbox.hpp
/// Items on their way from other threads to the one that prints them.
#pragma once

#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace dorn::tool {

/// Any thread puts, one takes.
template <class Item>
class Mailbox {
public:
    void put(Item item)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_items.push_back(std::move(item));
        }
        interrupt();
    }

    /// The items that have come, the oldest first; waits for some until @p until.
    /// @return nothing when the time has passed, after interrupt(), or for no reason.
    std::vector<Item> take(host::Deadline until)
    {
        if (m_news.load() == m_answered) {
            host::Clock::get().waitWhile(m_news, m_answered, until, false);
        }
        m_answered = m_news.load();
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_items, {});
    }

    /// Has take(), the running one or the one to come, return. Safe in a signal handler.
    void interrupt()
    {
        m_news.fetch_add(1);
        host::wakeWaiters(m_news, std::numeric_limits<int>::max(), false);
    }

private:
    std::mutex m_mutex;
    std::vector<Item> m_items;
    std::atomic<std::uint32_t> m_news{0}; ///< counts what take() must not sleep through
    std::uint32_t m_answered = 0;
};

} // namespace dorn::tool
