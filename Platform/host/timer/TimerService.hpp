// SPDX-License-Identifier: MIT
/// @file TimerService.hpp
/// Time-outs as messages.
#pragma once

#include "AaPro.h"
#include "AaTimer.h"
#include "port/Clock.hpp"

#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>

namespace dorn::host {

/// Keeps the armed time-outs by deadline and sleeps until the earliest. Its thread starts with the first time-out and
/// sleeps without limit while none is armed. Arming and cancelling cost O(log n).
class TimerService {
public:
    TimerService() = default;
    ~TimerService();
    TimerService(const TimerService&) = delete;
    TimerService& operator=(const TimerService&) = delete;

    /// @throws std::exception when there is no memory or no thread; nothing is armed then.
    TAaTimerId arm(TAaProEuId eu, Deadline deadline, const void* identity);
    bool cancel(TAaTimerId timer);

private:
    struct Timeout {
        TAaProEuId eu;
        const void* identity;
        bool isLate = false; ///< its EU had no room for it
    };
    /// Deadline and id: time-outs of one deadline arrive in the order in which they were armed.
    using Key = std::pair<Deadline, TAaTimerId>;

    using Timeouts = std::map<Key, Timeout>;

    void run();
    Deadline deliverDue();
    void postpone(Timeouts::iterator timeout);
    void stir();

    std::mutex m_mutex;
    Timeouts m_timeouts;
    std::unordered_map<TAaTimerId, Deadline> m_deadlines;
    std::atomic<std::uint32_t> m_changes{0};
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace dorn::host
