// SPDX-License-Identifier: MIT
/// @file SimulatedSystemTimer.hpp
/// The driver of the system timer, over a simulated one.
#pragma once

#include "BoardClock.hpp"
#include "boundaryIf/systemtimer/AbstractSystemTimerBif.hpp"

namespace dorn::examples {

/// The timer counts frames with the board's clock. By RP1 it is set to the frame clock bursts, which come with the
/// reference: three seconds of them, and it is in sync, until the board's time is more than 1500 ns off. Running freely
/// it is out of sync. For one thread.
class SimulatedSystemTimer : public vel::hwapi::common::bif::systemtimer::AbstractSystemTimerBif {
public:
    using ETimerSyncState = vel::hwapi::common::bif::systemtimer::ETimerSyncState;

    /// @param clock lives as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedSystemTimer(const BoardClock& clock, vel::hwapi::common::AbstractWorker& worker)
        : AbstractSystemTimerBif(worker), m_clock(clock)
    {
    }

    /// Has the timer go by bursts, when it is told to synchronize; until then it is out of sync.
    void setSystemTimerSourceToRp1() override;
    void setSystemTimerSourceToFreeRunning() override;
    ETimerSyncState getSystemTimerSynchronizationState() override { return m_state; }
    /// Begins to synchronize; does nothing without source, or when the timer does so or is in sync.
    void synchronizeSystemTimerAgainstSource() override;

    /// Lets time pass.
    void step(double seconds);

private:
    void enter(ETimerSyncState state);

    const BoardClock& m_clock;
    bool m_isByRp1 = false;
    ETimerSyncState m_state = vel::hwapi::common::bif::systemtimer::ETimerSyncState_OutOfSync;
    double m_secondsOfBursts = 0;
};

} // namespace dorn::examples
