// SPDX-License-Identifier: MIT
/// @file AbstractSwPllStateMonitorBif.hpp
/// Watches the software PLL that disciplines the board's clock: the PLL reports here, clients learn of it.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllStateMonitorCallbackParam.hpp"

namespace vel::hwapi::common::bif::swpllstatemonitor {

class AbstractSwPllStateMonitorBif : public AbstractBif<SwPllStateMonitorCallbackParam> {
public:
    /// Takes the monitor's events; derived from by clients.
    class AbstractSwPllStateMonitorCallback : public CallbackFunctor {};

    /// State, calibration or the permission to update the high-pass filter has changed.
    [[gnu::init_priority(101)]] inline static const std::string SWPLL_STATE_MONITOR_EVENT_NAME =
        "SwPllStateChangeEvent";

    virtual void swPllStateChanged(ESwPllState state, double phaseError) = 0;
    virtual void suspendSwPll() = 0;
    virtual void resumeSwPll() = 0;
    virtual bool isSwPllSuspended() = 0;
    virtual void setClockCalibrationStatusOngoing() = 0;
    virtual void setClockCalibrationStatusFinished() = 0;
    virtual void setClockCalibrationStatusNotStarted() = 0;
    virtual void setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed) = 0;

    void setSwPllStateMonitorCallback(AbstractSwPllStateMonitorCallback* callback)
    {
        addCallback(SWPLL_STATE_MONITOR_EVENT_NAME, callback);
    }

protected:
    AbstractSwPllStateMonitorBif() = default;
    explicit AbstractSwPllStateMonitorBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callSwPllStateChangeCallback(SwPllStateMonitorCallbackParam& parameter)
    {
        callCallback(SWPLL_STATE_MONITOR_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::swpllstatemonitor
