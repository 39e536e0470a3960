// SPDX-License-Identifier: MIT
/// @file ClockS.hpp
/// The board's clocks.
#pragma once

#include "BoardClock.hpp"
#include "ClockClient.hpp"
#include "ClockMessages.hpp"
#include "EventThread.hpp"
#include "FieldCalibration.hpp"
#include "PhaseLockMonitor.hpp"
#include "PhaseLockMonitoring.hpp"
#include "Service.hpp"
#include "SimulatedOcxo.hpp"
#include "SimulatedSwPllMonitor.hpp"
#include "SimulatedSystemTimer.hpp"
#include "SoftwarePll.hpp"
#include "StepTimer.hpp"

namespace dorn::examples {

/// Runs the software PLL on the oscillator, has the system timer synchronized when the PLL tracks, calibrates the
/// oscillator in the field, and tells what it has been told; see ClockMessages.hpp. The hardware is simulated, twenty
/// times as fast as it would be: messages stand for what happens to it.
class ClockS : public vel::hwapi::common::Service {
public:
    ClockS();

private:
    unsigned int PreStartup() override;
    void Init() override;
    void HandleTimeOut(StepTimeOutMsg timeOut);
    void HandleShow(ClockShowReqMsg request);
    void HandleAct(ClockActReqMsg request);

    void step();
    void runPll(double seconds);
    void calibrate(double seconds);
    void startTimer();
    EClockActStatus act(std::uint32_t action, double amount);

    ClockClient m_client;
    BoardClock m_clock;
    SoftwarePll m_pll;
    FieldCalibration m_calibration;
    PhaseLockMonitor m_phaseLockMonitor;
    SimulatedOcxo m_ocxo;
    SimulatedSwPllMonitor m_pllMonitor;
    SimulatedSystemTimer m_systemTimer;
    PhaseLockMonitoring m_phaseLockMonitoring;
    std::int32_t m_calibratedControlValue = 0; ///< what the PLL's corrections start from
    double m_secondsUnderWay = 0;              ///< of the hardware's time, until the next step
    StepTimer m_timer;
    EventThread m_events; ///< the last one: its end comes first
};

} // namespace dorn::examples
