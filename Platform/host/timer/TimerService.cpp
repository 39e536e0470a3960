// SPDX-License-Identifier: MIT
#include "timer/TimerService.hpp"

#include "AaSysLog.h"
#include "eu/Eu.hpp"
#include "log/Log.hpp"
#include "node/PerNode.hpp"
#include "port/SignalsBlocked.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <cstring>
#include <pthread.h>
#include <utility>

namespace dorn::host {
namespace {

/// A time-out that cannot be delivered now is tried again after this.
constexpr std::chrono::milliseconds putOffTime{10};

/// @return false when it is to be tried again: the EU's queue is full, or there is no memory.
bool deliver(TAaProEuId eu, const void* identity)
{
    std::unique_ptr<Message, MessageDeleter> message(Message::create(AA_TIMER_MSG_TIMEOUT, sizeof identity, 0, 0));
    if (!message) {
        return false;
    }
    std::memcpy(message->payload(), &identity, sizeof identity);
    return postToEu(message, eu) != EAaSysComStatus_QueueFull;
}

/// Not of one service: no id is used twice in a process.
std::atomic<TAaTimerId> lastId{0};

} // namespace

TimerService::~TimerService()
{
    m_isEnding.store(true);
    stir();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

TAaTimerId TimerService::arm(TAaProEuId eu, Deadline deadline, const void* identity)
{
    const std::lock_guard lock(m_mutex);
    if (!m_thread.joinable()) {
        PerNode<Log>::get(); // which the thread prints to, and which is therefore to be closed after it
        const SignalsBlocked untilStarted;
        m_thread = std::thread(&TimerService::run, this);
    }
    const TAaTimerId id = lastId.fetch_add(1) + 1;
    const auto entry = m_deadlines.emplace(id, deadline).first;
    try {
        m_timeouts.emplace(Key(deadline, id), Timeout{eu, identity});
    } catch (...) {
        m_deadlines.erase(entry);
        throw;
    }
    if (deadline < m_next) {
        m_next = deadline;
        stir();
    }
    return id;
}

bool TimerService::cancel(TAaTimerId timer)
{
    const std::lock_guard lock(m_mutex);
    const auto deadline = m_deadlines.find(timer);
    if (deadline == m_deadlines.end()) {
        return false;
    }
    m_timeouts.erase(Key(deadline->second, timer));
    m_deadlines.erase(deadline);
    return true;
}

void TimerService::stir()
{
    m_changes.fetch_add(1);
    wakeWaiters(m_changes, 1, false);
}

void TimerService::run()
{
    pthread_setname_np(pthread_self(), "AaTimer");
    while (!m_isEnding.load()) {
        const std::uint32_t changes = m_changes.load();
        const Deadline next = deliverDue();
        Clock::get().waitWhile(m_changes, changes, next, false);
    }
}

/// Delivers what is due. @return when to look again.
Deadline TimerService::deliverDue()
{
    const std::lock_guard lock(m_mutex);
    const Deadline now = Clock::get().monotonic();
    TAaProEuId stuckEu = 0; // its later time-outs are not tried before its earlier ones
    m_next = noDeadline;
    for (auto timeout = m_timeouts.begin(); timeout != m_timeouts.end();) {
        const auto [deadline, id] = timeout->first;
        if (deadline > now) {
            m_next = std::min(m_next, deadline);
            break;
        }
        Timeout& due = timeout->second;
        if (due.eu != stuckEu && deliver(due.eu, due.identity)) {
            m_deadlines.erase(id);
            timeout = m_timeouts.erase(timeout);
            continue;
        }
        if (due.eu != stuckEu && !std::exchange(due.isPutOff, true)) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "Time-out put off: the queue of its EU is full");
        }
        stuckEu = due.eu;
        m_next = now + putOffTime;
        ++timeout;
    }
    return m_next;
}

} // namespace dorn::host

TAaTimerId AaTimerArm(int64_t timeout, const void* identity)
{
    using namespace dorn::host;
    const TAaProEuId eu = AaProEuCurrent();
    if (timeout < 0 || eu == 0) {
        return 0;
    }
    try {
        return PerNode<TimerService>::get().arm(eu, Clock::get().after(timeout), identity);
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Time-out not armed: %s", error.what());
        return 0;
    }
}

int32_t AaTimerCancel(TAaTimerId timer)
{
    using namespace dorn::host;
    TimerService* const service = PerNode<TimerService>::ifOpen();
    return service && service->cancel(timer) ? 0 : 1;
}
