// SPDX-License-Identifier: MIT
/// @file TimerSyncCallbackParam.hpp
/// What an event of the system timer tells.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/systemtimer/SystemTimerTypes.hpp"

namespace vel::hwapi::common::bif::systemtimer {

/// Whether the system timer is in step with its source.
class TimerSyncCallbackParam : public CallbackParam {
public:
    TimerSyncCallbackParam() = default;
    /// Has the state set.
    explicit TimerSyncCallbackParam(ETimerSyncState state) : m_synchronizationState(state) {}

    /// @{
    /// The state, after the change that is reported.
    ETimerSyncState getSynchronizationState() const { return m_synchronizationState; }
    void setSynchronizationState(ETimerSyncState state) { m_synchronizationState = state; }
    /// @}

    bool operator==(const TimerSyncCallbackParam&) const = default;

private:
    ETimerSyncState m_synchronizationState = ETimerSyncState_OutOfSync;
};

} // namespace vel::hwapi::common::bif::systemtimer
