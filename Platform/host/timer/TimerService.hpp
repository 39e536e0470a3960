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
/// sleeps without limit while none is armed. Arming and cancelling cost O(log n). A time-out whose EU's queue is full
/// is put off, not lost.
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
        bool isPutOff = false; ///< that was logged
    };
    /// Deadline and id: time-outs of one deadline arrive in the order in which they were armed.
    using Key = std::pair<Deadline, TAaTimerId>;

    void run();
    Deadline deliverDue();
    void stir();

    std::mutex m_mutex;
    std::map<Key, Timeout> m_timeouts;
    std::unordered_map<TAaTimerId, Deadline> m_deadlines;
    Deadline m_next = noDeadline; ///< until when the thread sleeps
    std::atomic<std::uint32_t> m_changes{0};
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace dorn::host
