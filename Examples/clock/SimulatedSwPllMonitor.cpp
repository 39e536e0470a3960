// SPDX-License-Identifier: MIT
#include "SimulatedSwPllMonitor.hpp"

#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::swpllstatemonitor;

void SimulatedSwPllMonitor::swPllStateChanged(ESwPllState state, double phaseError)
{
    SwPllStateMonitorCallbackParam event(state, phaseError);
    callSwPllStateChangeCallback(event);
}

void SimulatedSwPllMonitor::setClockCalibrationStatusOngoing()
{
    SwPllStateMonitorCallbackParam event(EChangedParam_ClockCalibrationStatus);
    event.setClockCalibrationStatusOngoing();
    tellCalibration(event);
}

void SimulatedSwPllMonitor::setClockCalibrationStatusFinished()
{
    SwPllStateMonitorCallbackParam event(EChangedParam_ClockCalibrationStatus);
    event.setClockCalibrationStatusFinished();
    tellCalibration(event);
}

void SimulatedSwPllMonitor::setClockCalibrationStatusNotStarted()
{
    SwPllStateMonitorCallbackParam event(EChangedParam_ClockCalibrationStatus);
    event.setClockCalibrationStatusNotStarted();
    tellCalibration(event);
}

void SimulatedSwPllMonitor::tellCalibration(SwPllStateMonitorCallbackParam event)
{
    const EClockCalibrationStatus status = event.getClockCalibrationStatus();
    if (std::exchange(m_calibration, status) != status) {
        callSwPllStateChangeCallback(event);
    }
}

void SimulatedSwPllMonitor::setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed)
{
    if (std::exchange(m_hpf, allowed) == allowed) {
        return;
    }
    SwPllStateMonitorCallbackParam event(EChangedParam_HpfUpdateAllowed);
    event.setHpfUpdateAllowed(allowed);
    callSwPllStateChangeCallback(event);
}

} // namespace dorn::examples
