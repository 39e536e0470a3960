// SPDX-License-Identifier: MIT
#include "SimulatedOcxo.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::clocks::bif::ocxo;

namespace {

constexpr unsigned int greatestCurrent = 400;
constexpr double greatestOuterOvenError = 5;
constexpr double greatestOvenError = 1;
constexpr int temperatureOfCalibration = 25000;

enum EDacStatus : std::uint8_t { EDacStatus_Nok = 0, EDacStatus_Ok = 1, EDacStatus_NearLimit = 2 };

int thousandths(double degrees)
{
    return static_cast<int>(std::lround(degrees * 1000));
}

bool isControlValue(std::int32_t value)
{
    return value >= 0 && value <= OcxoModel::greatestControlValue;
}

/// "2026-11-21" and nothing else. @return whether there is such a day
bool readDate(const std::string& text, std::uint16_t& year, std::uint8_t& month, std::uint8_t& day)
{
    constexpr std::size_t length = 10;
    unsigned y = 0;
    unsigned m = 0;
    unsigned d = 0;
    int read = 0;
    if (text.size() != length || std::sscanf(text.c_str(), "%4u-%2u-%2u%n", &y, &m, &d, &read) != 3 ||
        read != static_cast<int>(length)) {
        return false;
    }
    if (!std::chrono::year_month_day(std::chrono::year(static_cast<int>(y)), std::chrono::month(m), std::chrono::day(d))
             .ok()) {
        return false;
    }
    year = static_cast<std::uint16_t>(y);
    month = static_cast<std::uint8_t>(m);
    day = static_cast<std::uint8_t>(d);
    return true;
}

} // namespace

bool SimulatedOcxo::getSensorsStatus(ESensorType type, SClkOcxoStatuses* statuses)
{
    if (!statuses || type > ESensorType_oven_temp_outer_oven) {
        return false;
    }
    const OcxoModel& ocxo = m_clock.ocxo();
    const auto state = m_clock.hasSensors() ? EClkOcxoStatusSensorState_Ok : EClkOcxoStatusSensorState_Fail;
    if (type == ESensorType_all || type == ESensorType_oven_current) {
        statuses->curr_ocxo = {state, greatestCurrent, 0, static_cast<unsigned int>(std::lround(ocxo.ovenCurrent()))};
    }
    if (type == ESensorType_all || type == ESensorType_oven_temp_outer_oven) {
        const double error = ocxo.outerOvenTemperature() - OcxoModel::outerOvenSetPoint;
        statuses->temp_ooven = {state, thousandths(ocxo.outerOvenTemperature()),
                                std::fabs(error) > greatestOuterOvenError ? 1 : 0};
    }
    if (type == ESensorType_all || type == ESensorType_oven_temp_ocxo) {
        const double error = ocxo.ovenTemperature() - OcxoModel::ovenSetPoint;
        statuses->temp_ocxo = {state, thousandths(ocxo.ovenTemperature()),
                               std::fabs(error) <= greatestOvenError ? 1 : 0};
    }
    return m_clock.hasSensors();
}

bool SimulatedOcxo::setOcxoControlValue(std::int32_t value)
{
    constexpr std::int32_t margin = OcxoModel::greatestControlValue / 10;
    if (!isControlValue(value)) {
        setDacStatus(EDacStatus_Nok);
        return false;
    }
    m_clock.ocxo().setControlValue(value);
    const bool isNearLimit = value < margin || value > OcxoModel::greatestControlValue - margin;
    setDacStatus(isNearLimit ? EDacStatus_NearLimit : EDacStatus_Ok);
    return true;
}

void SimulatedOcxo::setDacStatus(std::uint8_t status)
{
    if (std::exchange(m_toldDacStatus, status) == status) {
        return;
    }
    OcxoCallbackParam event;
    if (status == EDacStatus_Ok) {
        event.setDacSettingStatusOk();
    } else if (status == EDacStatus_NearLimit) {
        event.setDacSettingStatusNearAdjustmentLimit();
    } else {
        event.setDacSettingStatusNok();
    }
    callOcxoCallback(event);
}

bool SimulatedOcxo::getOcxoCalibrationValue(std::int32_t& controlValue, std::int32_t& pullPerStep,
                                            std::int32_t& temperature, ECalibrationValueSource& source)
{
    controlValue = m_calibratedControlValue;
    pullPerStep = thousandths(OcxoModel::pullPerStep);
    temperature = temperatureOfCalibration;
    source = m_calibrationSource;
    return true;
}

void SimulatedOcxo::sensorsNotAvailable()
{
    OcxoCallbackParam event;
    event.setSensorsStatusNok();
    callOcxoCallback(event);
}

void SimulatedOcxo::calibrationDataStatusOk()
{
    OcxoCallbackParam event;
    event.setCalibrationDataStatusOk();
    callOcxoCallback(event);
}

void SimulatedOcxo::calibrationDataStatusFailed()
{
    OcxoCallbackParam event;
    event.setCalibrationDataStatusFailed();
    callOcxoCallback(event);
}

void SimulatedOcxo::setOcxoControlValueToMo(std::int32_t value)
{
    OcxoCallbackParam event;
    event.updateOcxoControlValueToMo(value);
    callOcxoCallback(event);
}

bool SimulatedOcxo::getThermalCoefficient(double& first, double& second, double& third, double& fourth)
{
    const auto& coefficients = OcxoModel::thermalCoefficients;
    first = coefficients[0];
    second = coefficients[1];
    third = coefficients[2];
    fourth = coefficients[3];
    return true;
}

bool SimulatedOcxo::storeCalibrationData(int controlValue, std::string date, std::uint16_t& year, std::uint8_t& month,
                                         std::uint8_t& day)
{
    if (!isControlValue(controlValue) || !readDate(date, year, month, day)) {
        return false;
    }
    m_calibratedControlValue = controlValue;
    m_calibrationSource = ECalibrationValueSource_Field;
    return true;
}

void SimulatedOcxo::checkSensors()
{
    const Sensors now = m_clock.hasSensors() ? Sensors::Ok : Sensors::Lost;
    if (std::exchange(m_toldSensors, now) == now) {
        return;
    }
    if (now == Sensors::Lost) {
        sensorsNotAvailable();
        return;
    }
    OcxoCallbackParam event;
    event.setSensorsStatusOk();
    callOcxoCallback(event);
}

} // namespace dorn::examples
