// SPDX-License-Identifier: MIT
/// @file StepTimer.hpp
/// When a service's model takes its next step.
#pragma once

#include "AaTimer.h"
#include "Msg.hpp"
#include "rad/ERadHwapi.h"

#include <chrono>

namespace dorn::examples {

/// "It is time for a step."
struct SStepTimeOut {
    const void* identity;
};
using StepTimeOutMsg = vel::hwapi::common::Msg<SStepTimeOut, AA_TIMER_MSG_TIMEOUT>;

/// Wakes a service for the steps of its model while something moves in it, and not at all while nothing does.
///
///     m_timer.start(period);                       // something has begun to move
///     if (m_timer.takes(timeOut) && m_model.step()) {
///         m_timer.start(period);                   // it still does
///     }
///
/// For the main EU, which receives the time-outs.
class StepTimer {
public:
    /// @param feature feature id of the log line that tells that there is no timer
    explicit StepTimer(ERadHwapi feature) : m_feature(feature) {}
    StepTimer(const StepTimer&) = delete;
    StepTimer& operator=(const StepTimer&) = delete;

    /// Has a time-out come when @p period has passed. Does nothing while one is on its way.
    void start(std::chrono::microseconds period);
    /// Whether this is the time-out that was on its way. None is any more then.
    bool takes(StepTimeOutMsg timeOut);

private:
    const ERadHwapi m_feature;
    bool m_isArmed = false;
};

} // namespace dorn::examples
