// SPDX-License-Identifier: MIT
/// @file AbstractSystemTimerBif.hpp
/// The system timer of the board, which runs freely or by the frame clock bursts of OBSAI reference point 1 (RP1).
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/systemtimer/TimerSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::systemtimer {

/// The board's system timer: what it goes by, and whether it is in step with it.
class AbstractSystemTimerBif : public AbstractBif<TimerSyncCallbackParam> {
public:
    /// Takes the timer's events; derived from by clients.
    class AbstractTimerSyncCallback : public CallbackFunctor {};

    /// The state of synchronisation has changed.
    [[gnu::init_priority(101)]] inline static const std::string SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME =
        "SystemTimerSyncEvent";

    /// Has the timer go by RP1.
    virtual void setSystemTimerSourceToRp1() = 0;
    /// Has the timer go by nothing but itself.
    virtual void setSystemTimerSourceToFreeRunning() = 0;
    /// Whether the timer is in step with its source.
    virtual ETimerSyncState getSystemTimerSynchronizationState() = 0;
    /// Brings the timer into step with its source; the event tells how that goes.
    virtual void synchronizeSystemTimerAgainstSource() = 0;

    /// Registers who is told of changes; the callback stays the caller's and must outlive the interface.
    void setSystemTimerSynchronizationCallback(AbstractTimerSyncCallback* callback)
    {
        addCallback(SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME, callback);
    }

protected:
    AbstractSystemTimerBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractSystemTimerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME.
    virtual void callSystemTimerSynchronizationCallback(TimerSyncCallbackParam& parameter)
    {
        callCallback(SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::systemtimer
