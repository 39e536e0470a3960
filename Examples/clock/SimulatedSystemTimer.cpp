// SPDX-License-Identifier: MIT
#include "SimulatedSystemTimer.hpp"

#include <cmath>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::systemtimer;

namespace {

constexpr double secondsToSynchronize = 3;
constexpr double greatestTimeError = 1500; // nanoseconds

} // namespace

void SimulatedSystemTimer::setSystemTimerSourceToRp1()
{
    m_isByRp1 = true;
    enter(ETimerSyncState_OutOfSync);
}

void SimulatedSystemTimer::setSystemTimerSourceToFreeRunning()
{
    m_isByRp1 = false;
    enter(ETimerSyncState_OutOfSync);
}

void SimulatedSystemTimer::synchronizeSystemTimerAgainstSource()
{
    if (m_isByRp1 && m_state == ETimerSyncState_OutOfSync) {
        m_secondsOfBursts = 0;
        enter(ETimerSyncState_Synchronizing);
    }
}

void SimulatedSystemTimer::step(double seconds)
{
    const bool isFarOff = std::fabs(m_clock.timeError()) > greatestTimeError;
    if (m_state == ETimerSyncState_InSync && isFarOff) {
        enter(ETimerSyncState_OutOfSync);
    } else if (m_state == ETimerSyncState_Synchronizing && (isFarOff || !m_clock.hasReference())) {
        enter(ETimerSyncState_OutOfSync);
    } else if (m_state == ETimerSyncState_Synchronizing) {
        m_secondsOfBursts += seconds;
        if (m_secondsOfBursts >= secondsToSynchronize) {
            enter(ETimerSyncState_InSync);
        }
    }
}

void SimulatedSystemTimer::enter(ETimerSyncState state)
{
    if (m_state == state) {
        return;
    }
    m_state = state;
    TimerSyncCallbackParam event(state);
    callSystemTimerSynchronizationCallback(event);
}

} // namespace dorn::examples
