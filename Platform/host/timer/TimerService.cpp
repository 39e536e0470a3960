// SPDX-License-Identifier: MIT
#include "timer/TimerService.hpp"

#include "AaSysLog.h"
#include "eu/Eu.hpp"
#include "log/Log.hpp"
#include "node/PerNode.hpp"
#include "syscom/Post.hpp"

#include <cstring>
#include <pthread.h>
#include <signal.h>

namespace dorn::host {
namespace {

/// When a time-out is offered again that an EU had no room for.
constexpr std::chrono::milliseconds retryTime{10};

/// @return false when its EU has no room for it now.
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

/// Signals are for the threads of the program.
void blockSignals()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

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
        m_thread = std::thread(&TimerService::run, this);
    }
    const TAaTimerId id = lastId.fetch_add(1) + 1;
    m_deadlines.emplace(id, deadline);
    const auto entry = m_timeouts.emplace(Key(deadline, id), Timeout{eu, identity}).first;
    if (entry == m_timeouts.begin()) {
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
    blockSignals();
    pthread_setname_np(pthread_self(), "AaTimer");
    while (!m_isEnding.load()) {
        const std::uint32_t changes = m_changes.load();
        const Deadline next = deliverDue();
        Clock::get().waitWhile(m_changes, changes, next, false);
    }
}

/// Delivers what is due. @return when the next one is.
Deadline TimerService::deliverDue()
{
    const std::lock_guard lock(m_mutex);
    while (!m_timeouts.empty()) {
        const auto first = m_timeouts.begin();
        if (first->first.first > Clock::get().monotonic()) {
            return first->first.first;
        }
        if (deliver(first->second.eu, first->second.identity)) {
            m_deadlines.erase(first->first.second);
            m_timeouts.erase(first);
        } else {
            postpone(first);
        }
    }
    return noDeadline;
}

void TimerService::postpone(Timeouts::iterator timeout)
{
    auto entry = m_timeouts.extract(timeout);
    if (!std::exchange(entry.mapped().isLate, true)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Time-out is late: there is no room for it in the queue of EU 0x%X",
                      entry.mapped().eu);
    }
    entry.key().first = Clock::get().monotonic() + retryTime;
    m_deadlines[entry.key().second] = entry.key().first;
    m_timeouts.insert(std::move(entry));
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
