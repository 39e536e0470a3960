// SPDX-License-Identifier: MIT
/// @file SwPllStateMonitorCallbackParam.hpp
/// What an event of the software PLL's monitor tells: getChangedParam() says which of the other values it is about.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"

namespace vel::hwapi::common::bif::swpllstatemonitor {

class SwPllStateMonitorCallbackParam : public CallbackParam {
public:
    /// Reports the state ESwPllState_Acquire0.
    SwPllStateMonitorCallbackParam() = default;
    /// Reports a state.
    SwPllStateMonitorCallbackParam(ESwPllState state, double phaseError) : m_state(state), m_phaseError(phaseError) {}
    /// Reports a value of the caller's choice, which is still to be set.
    explicit SwPllStateMonitorCallbackParam(EChangedParam changedParam) : m_changedParam(changedParam) {}

    EChangedParam getChangedParam() const { return m_changedParam; }

    ESwPllState getSwPllState() const { return m_state; }
    void setSwPllState(ESwPllState state) { m_state = state; }
    double getPhaseError() const { return m_phaseError; }

    EClockCalibrationStatus getClockCalibrationStatus() const { return m_clockCalibrationStatus; }
    void setClockCalibrationStatusNotStarted() { m_clockCalibrationStatus = EClockCalibrationStatus_NotStarted; }
    void setClockCalibrationStatusOngoing() { m_clockCalibrationStatus = EClockCalibrationStatus_Ongoing; }
    void setClockCalibrationStatusFinished() { m_clockCalibrationStatus = EClockCalibrationStatus_Finished; }

    ETunerHpfUpdateAllowed getHpfUpdateAllowed() const { return m_hpfUpdateAllowed; }
    void setHpfUpdateAllowed(ETunerHpfUpdateAllowed allowed) { m_hpfUpdateAllowed = allowed; }

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
