// SPDX-License-Identifier: MIT
#include "ClockS.hpp"

#include "AaConfigTag.h"
#include "Answer.hpp"
#include "ClimateMessages.hpp"
#include "OwnUnit.hpp"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace dorn::examples {

using namespace vel::hwapi::clocks::bif::ocxo;
using namespace vel::hwapi::common::bif::swpllstatemonitor;
using namespace vel::hwapi::common::bif::systemtimer;

namespace {

/// What a second of the simulated hardware takes.
constexpr std::chrono::milliseconds simulatedSecond{50};

constexpr std::uint32_t defaultAir = 25; // degrees Celsius

// The board's time is good while its error stays within 50 ns; three samples tell that it does not, five that it does.
constexpr float phaseErrorLimit = 50;
constexpr std::uint32_t samplesToExceed = 3;
constexpr std::uint32_t samplesToBeOk = 5;

double airTemperature()
{
    std::uint32_t air = defaultAir;
    AaConfigTagGetU32(ambientTag, &air);
    return static_cast<std::int32_t>(air);
}

/// "2026-11-21"
std::string today()
{
    const auto day = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    const std::chrono::year_month_day date(day);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text.data();
}

} // namespace

ClockS::ClockS()
    : Service("ClockS", clockServiceCpid, ERadHwapi_CLOCKS, ERadHwapiState_ClockOCXOOvenState),
      m_client(ERadHwapi_CLOCKS),
      m_phaseLockMonitor("time error", phaseErrorLimit, samplesToExceed, samplesToBeOk),
      m_ocxo(m_clock, EventThread::worker()),
      m_pllMonitor(EventThread::worker()),
      m_systemTimer(m_clock, EventThread::worker()),
      m_phaseLockMonitoring(EventThread::worker()),
      m_timer(ERadHwapi_CLOCKS)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n");
}

unsigned int ClockS::PreStartup()
{
    SetVerbose(GetArgumentParser().ReadArgument("v") == "arg on" ? 1 : 0);
    return 1;
}

void ClockS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&ClockS::HandleTimeOut);
    AddMsgHandler(&ClockS::HandleShow);
    AddMsgHandler(&ClockS::HandleAct);
    m_client.listenTo(m_pllMonitor);
    m_client.listenTo(m_systemTimer);
    m_client.listenTo(m_phaseLockMonitoring);
    m_client.listenTo(m_ocxo);
    m_ocxo.initialize(); // and the others with it: they share a worker
    m_phaseLockMonitoring.addPhaseLockStatusMonitor(&m_phaseLockMonitor);
    m_systemTimer.setSystemTimerSourceToRp1();
    std::int32_t pullPerStep = 0;
    std::int32_t temperature = 0;
    ECalibrationValueSource source{};
    m_ocxo.getOcxoCalibrationValue(m_calibratedControlValue, pullPerStep, temperature, source);
    m_ocxo.setOcxoControlValue(m_calibratedControlValue);
    m_pllMonitor.swPllStateChanged(m_pll.state(), 0);
    startTimer();
}

void ClockS::startTimer()
{
    m_secondsUnderWay = m_pll.secondsToNextStep();
    m_timer.start(std::chrono::round<std::chrono::microseconds>(m_secondsUnderWay * simulatedSecond));
}

void ClockS::HandleTimeOut(StepTimeOutMsg timeOut)
{
    if (m_timer.takes(timeOut)) {
        step();
        startTimer();
    }
}

void ClockS::step()
{
    const double seconds = m_secondsUnderWay;
    m_clock.step(seconds, airTemperature());
    m_ocxo.checkSensors();
    if (!m_pllMonitor.isSwPllSuspended()) {
        runPll(seconds);
    }
    m_systemTimer.step(seconds);
    if (m_pll.isTracking()) {
        m_systemTimer.synchronizeSystemTimerAgainstSource();
    }
    calibrate(seconds);
}

void ClockS::runPll(double seconds)
{
    PllSample sample{m_clock.hasReference(), m_clock.ocxo().isWarm(), 0, seconds};
    if (sample.hasReference) {
        sample.phaseError = m_clock.measurePhase();
        m_phaseLockMonitoring.doPhaseLockStatusMonitoring(sample.phaseError,
                                                          static_cast<std::uint64_t>(m_clock.uptime() * 1000));
    }
    const ESwPllState before = m_pll.state();
    const PllCorrection correction = m_pll.step(sample);
    m_clock.setBack(correction.phase);
    const auto steps = std::lround(correction.frequency / OcxoModel::pullPerStep);
    m_ocxo.setOcxoControlValue(m_calibratedControlValue + static_cast<std::int32_t>(steps));
    if (m_pll.state() != before) {
        m_pllMonitor.swPllStateChanged(m_pll.state(), sample.phaseError);
    }
    m_pllMonitor.setHpfUpdateAllowed(m_pll.state() == ESwPllState_TrackMax ? ETunerHpfUpdateAllowed_True
                                                                           : ETunerHpfUpdateAllowed_False);
}

void ClockS::calibrate(double seconds)
{
    const EClockCalibrationStatus before = m_calibration.status();
    m_calibration.step(m_pll.state(), m_clock.ocxo().controlValue(), seconds);
    if (m_calibration.status() == before) {
        return;
    }
    if (m_calibration.status() == EClockCalibrationStatus_NotStarted) {
        m_pllMonitor.setClockCalibrationStatusNotStarted();
        return;
    }
    if (m_calibration.status() == EClockCalibrationStatus_Ongoing) {
        m_pllMonitor.setClockCalibrationStatusOngoing();
        return;
    }
    std::uint16_t year = 0;
    std::uint8_t month = 0;
    std::uint8_t day = 0;
    if (m_ocxo.storeCalibrationData(m_calibration.controlValue(), today(), year, month, day)) {
        m_ocxo.calibrationDataStatusOk();
        m_ocxo.setOcxoControlValueToMo(m_calibration.controlValue());
    } else {
        m_ocxo.calibrationDataStatusFailed();
    }
    m_pllMonitor.setClockCalibrationStatusFinished();
}

void ClockS::HandleShow(ClockShowReqMsg request)
{
    answerTo<ClockShowRespMsg>(request, *this, [&](ClockShowRespMsg answer) {
        const ClockClient::State known = m_client.state();
        SClkOcxoStatuses sensors{};
        m_ocxo.getSensorsStatus(ESensorType_all, &sensors);
        answer->pllState = known.pll;
        answer->timerState = known.timer;
        answer->phaseLockStatus = known.phaseLock;
        answer->calibrationStatus = known.calibration;
        answer->dacStatus = known.dac;
        answer->controlValue = m_clock.ocxo().controlValue();
        answer->areSensorsOk = known.areSensorsOk ? 1 : 0;
        answer->ovenCurrent = sensors.curr_ocxo.curr_val;
        answer->ocxoTemperature = sensors.temp_ocxo.millicelsius;
        answer->outerTemperature = sensors.temp_ooven.millicelsius;
        answer->hasReference = m_clock.hasReference() ? 1 : 0;
        answer->phaseError = known.phaseError;
        answer->timeError = m_clock.timeError();
        answer->frequencyError = m_clock.ocxo().frequencyError();
    });
}

void ClockS::HandleAct(ClockActReqMsg request)
{
    answerTo<ClockActRespMsg>(request, *this,
                              [&](ClockActRespMsg answer) { answer->status = act(request->action, request->amount); });
}

EClockActStatus ClockS::act(std::uint32_t action, double amount)
{
    const bool isLoss = action == EClockAction_LoseReference || action == EClockAction_LoseSensors;
    switch (action) {
    case EClockAction_LoseReference:
    case EClockAction_RestoreReference:
        if (m_clock.hasReference() != isLoss) {
            return EClockActStatus_SoAlready;
        }
        m_clock.setReference(!isLoss);
        return EClockActStatus_Done;
    case EClockAction_LoseSensors:
    case EClockAction_RestoreSensors:
        if (m_clock.hasSensors() != isLoss) {
            return EClockActStatus_SoAlready;
        }
        m_clock.setSensors(!isLoss);
        return EClockActStatus_Done;
    case EClockAction_Jump:
        if (!(std::fabs(amount) <= greatestClockJump)) {
            return EClockActStatus_BadAmount;
        }
        m_clock.ocxo().jump(amount);
        return EClockActStatus_Done;
    default:
        return EClockActStatus_NoSuchAction;
    }
}

} // namespace dorn::examples
