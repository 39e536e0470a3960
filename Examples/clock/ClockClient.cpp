// SPDX-License-Identifier: MIT
#include "ClockClient.hpp"

#include "AaSysLog.h"
#include "ClockNames.hpp"

namespace dorn::examples {

using namespace vel::hwapi::common::bif::swpllstatemonitor;

ClockClient::ClockClient(ERadHwapi feature)
    : m_feature(feature),
      m_pll([this](const Pll& event) { onPll(event); }),
      m_timer([this](const Timer& event) { onTimer(event); }),
      m_phaseLock([this](const PhaseLock& event) { onPhaseLock(event); }),
      m_ocxo([this](const Ocxo& event) { onOcxo(event); })
{
}

void ClockClient::listenTo(AbstractSwPllStateMonitorBif& bif)
{
    bif.setSwPllStateMonitorCallback(&m_pll);
}

void ClockClient::listenTo(vel::hwapi::common::bif::systemtimer::AbstractSystemTimerBif& bif)
{
    bif.setSystemTimerSynchronizationCallback(&m_timer);
}

void ClockClient::listenTo(vel::hwapi::common::bif::phaselockstatusmonitor::AbstractPhaseLockStatusMonitorBif& bif)
{
    bif.setPhaseLockStatusCallback(&m_phaseLock);
}

void ClockClient::listenTo(vel::hwapi::clocks::bif::ocxo::AbstractOcxoBif& bif)
{
    bif.setOcxoCallback(&m_ocxo);
}

void ClockClient::onPll(const Pll& event)
{
    switch (event.getChangedParam()) {
    case EChangedParam_SwPllState:
        note(std::string("PLL: ") + nameIn(swPllStateNames, event.getSwPllState()), [&event](State& state) {
            state.pll = event.getSwPllState();
            state.phaseError = event.getPhaseError();
        });
        break;
    case EChangedParam_ClockCalibrationStatus:
        note(std::string("calibration: ") + nameIn(calibrationStatusNames, event.getClockCalibrationStatus()),
             [&event](State& state) { state.calibration = event.getClockCalibrationStatus(); });
        break;
    case EChangedParam_HpfUpdateAllowed:
        note(std::string("high-pass filter: ") +
             (event.getHpfUpdateAllowed() == ETunerHpfUpdateAllowed_True ? "may be updated" : "must not be updated"));
        break;
    default:
        break;
    }
}

void ClockClient::onTimer(const Timer& event)
{
    note(std::string("system timer: ") + nameIn(timerSyncStateNames, event.getSynchronizationState()),
         [&event](State& state) { state.timer = event.getSynchronizationState(); });
}

void ClockClient::onPhaseLock(const PhaseLock& event)
{
    note(event.getIdentifier() + ": " + phaseLockStatusName(event.getPhaseLockStatus()),
         [&event](State& state) { state.phaseLock = event.getPhaseLockStatus(); });
}

void ClockClient::onOcxo(const Ocxo& event)
{
    if (event.isCalibrationDataStatusModified()) { // a failed calibration marks the sensors, too
        note(std::string("calibration data: ") + (event.isCalibrationDataStatusOk() ? "ok" : "not ok"));
    } else if (event.isSensorsStatusModified()) {
        note(std::string("sensors: ") + (event.isSensorsStatusOk() ? "ok" : "not ok"),
             [&event](State& state) { state.areSensorsOk = event.isSensorsStatusOk(); });
    } else if (event.isDacSettingStatusModified()) {
        note(std::string("DAC: ") + nameIn(dacStatusNames, event.getDacSettingStatus()),
             [&event](State& state) { state.dac = event.getDacSettingStatus(); });
    } else if (event.isOcxoControlValueModified()) {
        note("control value: " + std::to_string(event.getOcxoControlValue()));
    }
}

/// Keeps what an event has said, and logs it: whoever reads the log finds it kept.
void ClockClient::note(const std::string& text, const std::function<void(State&)>& change)
{
    {
        const std::lock_guard lock(m_mutex);
        change(m_state);
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_feature, "Clock %s", text.c_str());
}

ClockClient::State ClockClient::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
}

} // namespace dorn::examples
