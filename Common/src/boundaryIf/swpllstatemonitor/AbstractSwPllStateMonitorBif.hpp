// SPDX-License-Identifier: MIT
/// @file AbstractSwPllStateMonitorBif.hpp
/// Watches the software PLL that disciplines the board's clock: the PLL reports here, clients learn of it.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllStateMonitorCallbackParam.hpp"

namespace vel::hwapi::common::bif::swpllstatemonitor {

/// Where the software PLL tells its state, and where clients hold it up.
class AbstractSwPllStateMonitorBif : public AbstractBif<SwPllStateMonitorCallbackParam> {
public:
    /// Takes the monitor's events; derived from by clients.
    class AbstractSwPllStateMonitorCallback : public CallbackFunctor {};

    /// State, calibration or the permission to update the high-pass filter has changed.
    [[gnu::init_priority(101)]] inline static const std::string SWPLL_STATE_MONITOR_EVENT_NAME =
        "SwPllStateChangeEvent";

    /// Tells the monitor the PLL's state and the phase error that belongs to it.
    virtual void swPllStateChanged(ESwPllState state, double phaseError) = 0;
    /// @{
    /// Whether the PLL is suspended.
    virtual void suspendSwPll() = 0;
    virtual void resumeSwPll() = 0;
    virtual bool isSwPllSuspended() = 0;
    /// @}

    /// @{
    /// Tells the monitor how far the calibration of the clock has come.
    virtual void setClockCalibrationStatusOngoing() = 0;
    virtual void setClockCalibrationStatusFinished() = 0;
    virtual void setClockCalibrationStatusNotStarted() = 0;
    /// @}

    /// Tells the monitor whether the high-pass filter may be updated.
    virtual void setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed) = 0;

    /// Registers who is told of changes; the callback stays the caller's and must outlive the interface.
    void setSwPllStateMonitorCallback(AbstractSwPllStateMonitorCallback* callback)
    {
        addCallback(SWPLL_STATE_MONITOR_EVENT_NAME, callback);
    }

protected:
    AbstractSwPllStateMonitorBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractSwPllStateMonitorBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #SWPLL_STATE_MONITOR_EVENT_NAME.
    virtual void callSwPllStateChangeCallback(SwPllStateMonitorCallbackParam& parameter)
    {
        callCallback(SWPLL_STATE_MONITOR_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::swpllstatemonitor
