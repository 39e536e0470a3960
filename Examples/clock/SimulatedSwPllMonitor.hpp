// SPDX-License-Identifier: MIT
/// @file SimulatedSwPllMonitor.hpp
/// Where the software PLL reports, and where it is held up.
#pragma once

#include "boundaryIf/swpllstatemonitor/AbstractSwPllStateMonitorBif.hpp"

namespace dorn::examples {

/// Raises "SwPllStateChangeEvent" for each report of a state, and when the calibration's status or the permission to
/// update the high-pass filter is another than before. For one thread.
class SimulatedSwPllMonitor : public vel::hwapi::common::bif::swpllstatemonitor::AbstractSwPllStateMonitorBif {
public:
    using ESwPllState = vel::hwapi::common::bif::swpllstatemonitor::ESwPllState;
    using ETunerHpfUpdateAllowed = vel::hwapi::common::bif::swpllstatemonitor::ETunerHpfUpdateAllowed;

    /// @param worker delivers the events once the interface has been initialized
    explicit SimulatedSwPllMonitor(vel::hwapi::common::AbstractWorker& worker) : AbstractSwPllStateMonitorBif(worker) {}

    void swPllStateChanged(ESwPllState state, double phaseError) override;
    /// A PLL that is suspended takes no samples: the oscillator runs on as it was set last.
    void suspendSwPll() override { m_isSuspended = true; }
    void resumeSwPll() override { m_isSuspended = false; }
    bool isSwPllSuspended() override { return m_isSuspended; }
    void setClockCalibrationStatusOngoing() override;
    void setClockCalibrationStatusFinished() override;
    void setClockCalibrationStatusNotStarted() override;
    void setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed) override;

private:
    using Param = vel::hwapi::common::bif::swpllstatemonitor::SwPllStateMonitorCallbackParam;
    using EClockCalibrationStatus = vel::hwapi::common::bif::swpllstatemonitor::EClockCalibrationStatus;

    void tellCalibration(Param event);

    bool m_isSuspended = false;
    EClockCalibrationStatus m_calibration =
        vel::hwapi::common::bif::swpllstatemonitor::EClockCalibrationStatus_NotStarted;
    ETunerHpfUpdateAllowed m_hpf = vel::hwapi::common::bif::swpllstatemonitor::ETunerHpfUpdateAllowed_False;
};

} // namespace dorn::examples
