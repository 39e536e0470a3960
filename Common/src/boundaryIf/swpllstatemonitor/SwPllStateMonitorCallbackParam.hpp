// SPDX-License-Identifier: MIT
/// @file SwPllStateMonitorCallbackParam.hpp
/// What an event of the software PLL's monitor tells: getChangedParam() says which of the other values it is about.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"

namespace vel::hwapi::common::bif::swpllstatemonitor {

/// What has changed at the software PLL; only the value that getChangedParam() names counts.
class SwPllStateMonitorCallbackParam : public CallbackParam {
public:
    /// Reports the state ESwPllState_Acquire0.
    SwPllStateMonitorCallbackParam() = default;
    /// Reports a state.
    SwPllStateMonitorCallbackParam(ESwPllState state, double phaseError) : m_state(state), m_phaseError(phaseError) {}
    /// Reports a value of the caller's choice, which is still to be set.
    explicit SwPllStateMonitorCallbackParam(EChangedParam changedParam) : m_changedParam(changedParam) {}

    /// Which of the other values this event reports.
    EChangedParam getChangedParam() const { return m_changedParam; }

    /// @{
    /// The PLL's state.
    ESwPllState getSwPllState() const { return m_state; }
    void setSwPllState(ESwPllState state) { m_state = state; }
    /// @}

    /// The phase error that belongs to the state.
    double getPhaseError() const { return m_phaseError; }

    /// @{
    /// How far the calibration of the clock has come.
    EClockCalibrationStatus getClockCalibrationStatus() const { return m_clockCalibrationStatus; }
    void setClockCalibrationStatusNotStarted() { m_clockCalibrationStatus = EClockCalibrationStatus_NotStarted; }
    void setClockCalibrationStatusOngoing() { m_clockCalibrationStatus = EClockCalibrationStatus_Ongoing; }
    void setClockCalibrationStatusFinished() { m_clockCalibrationStatus = EClockCalibrationStatus_Finished; }
    /// @}

    /// @{
    /// Whether the high-pass filter may be updated.
    ETunerHpfUpdateAllowed getHpfUpdateAllowed() const { return m_hpfUpdateAllowed; }
    void setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed) { m_hpfUpdateAllowed = allowed; }
    /// @}

    /// Compares state, phase error and changed parameter; the others do not count.
    bool operator==(const SwPllStateMonitorCallbackParam& other) const
    {
        return m_state == other.m_state && m_phaseError == other.m_phaseError && m_changedParam == other.m_changedParam;
    }

private:
    ESwPllState m_state = ESwPllState_Acquire0;
    double m_phaseError = 0;
    EChangedParam m_changedParam = EChangedParam_SwPllState;
    EClockCalibrationStatus m_clockCalibrationStatus = EClockCalibrationStatus_NotStarted;
    ETunerHpfUpdateAllowed m_hpfUpdateAllowed = ETunerHpfUpdateAllowed_False;
};

} // namespace vel::hwapi::common::bif::swpllstatemonitor
