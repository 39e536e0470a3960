// SPDX-License-Identifier: MIT
/// @file AbstractSystemTimerBif.hpp
/// The system timer of the board, which runs freely or by the frame clock bursts of OBSAI reference point 1 (RP1).
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/systemtimer/TimerSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::systemtimer {

class AbstractSystemTimerBif : public AbstractBif<TimerSyncCallbackParam> {
public:
    /// Takes the timer's events; derived from by clients.
    class AbstractTimerSyncCallback : public CallbackFunctor {};

    /// The state of synchronisation has changed.
    [[gnu::init_priority(101)]] inline static const std::string SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME =
        "SystemTimerSyncEvent";

    virtual void setSystemTimerSourceToRp1() = 0;
    virtual void setSystemTimerSourceToFreeRunning() = 0;
    virtual ETimerSyncState getSystemTimerSynchronizationState() = 0;
    virtual void synchronizeSystemTimerAgainstSource() = 0;

    void setSystemTimerSynchronizationCallback(AbstractTimerSyncCallback* callback)
    {
        addCallback(SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME, callback);
    }

protected:
    AbstractSystemTimerBif() = default;
    explicit AbstractSystemTimerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callSystemTimerSynchronizationCallback(TimerSyncCallbackParam& parameter)
    {
        callCallback(SYSTEM_TIMER_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::systemtimer
