// SPDX-License-Identifier: MIT
/// @file SimulatedOcxo.hpp
/// The driver of the oscillator, over a simulated one.
#pragma once

#include "BoardClock.hpp"
#include "boundaryIf/ocxo/AbstractOcxoBif.hpp"

#include <cstdint>
#include <string>

namespace dorn::examples {

/// Raises "OcxoEvent" when what the interface's values say has changed. For one thread.
class SimulatedOcxo : public vel::hwapi::clocks::bif::ocxo::AbstractOcxoBif {
public:
    using ESensorType = vel::hwapi::clocks::bif::ocxo::ESensorType;
    using SClkOcxoStatuses = vel::hwapi::clocks::bif::ocxo::SClkOcxoStatuses;
    using ECalibrationValueSource = vel::hwapi::clocks::bif::ocxo::ECalibrationValueSource;

    /// @param clock lives as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedOcxo(BoardClock& clock, vel::hwapi::common::AbstractWorker& worker)
        : AbstractOcxoBif(worker), m_clock(clock)
    {
    }

    /// Currents are in milliamperes. `alarm_state` of the outer oven is 1 when it is more than 5 degrees off its set
    /// point, `no_alarm` of the oscillator's oven 1 when that is at most 1 degree off.
    /// @return false, with the sensors' states EClkOcxoStatusSensorState_Fail, when they do not answer; false also for
    ///   no place to write to and for a type that is none.
    bool getSensorsStatus(ESensorType type, SClkOcxoStatuses* statuses) override;

    /// Sets the DAC. Its status is Ok, or near the limit in the first and last tenth of its range.
    /// @return false when it has no such value: its status is Nok then, the oscillator runs on as before.
    bool setOcxoControlValue(std::int32_t value) override;

    /// @param controlValue with which the frequency was right
    /// @param pullPerStep parts per trillion by which a step of the control value makes the oscillator faster
    /// @param temperature thousandths of degrees Celsius around the oscillator when it was calibrated
    bool getOcxoCalibrationValue(std::int32_t& controlValue, std::int32_t& pullPerStep, std::int32_t& temperature,
                                 ECalibrationValueSource& source) override;

    void sensorsNotAvailable() override;
    void calibrationDataStatusOk() override;
    void calibrationDataStatusFailed() override;
    void setOcxoControlValueToMo(std::int32_t value) override;

    /// ppb by which a case of so many degrees Celsius above 25 puts the frequency off: first + second * degrees +
    /// third * degrees^2 + fourth * degrees^3
    bool getThermalCoefficient(double& first, double& second, double& third, double& fourth) override;

    /// Makes @p controlValue the calibration of the field.
    /// @param date of the calibration, "2026-11-21"; the others receive it as numbers
    /// @return false when the DAC has no such value, or @p date is none; nothing has changed then.
    bool storeCalibrationData(int controlValue, std::string date, std::uint16_t& year, std::uint8_t& month,
                              std::uint8_t& day) override;

    /// Looks whether the sensors answer, and tells when that has changed.
    void checkSensors();

private:
    enum class Sensors { Unknown, Ok, Lost };

    void setDacStatus(std::uint8_t status);

    BoardClock& m_clock;
    Sensors m_toldSensors = Sensors::Unknown;
    std::int16_t m_toldDacStatus = -1; ///< nothing yet
    std::int32_t m_calibratedControlValue = OcxoModel::factoryControlValue;
    ECalibrationValueSource m_calibrationSource = vel::hwapi::clocks::bif::ocxo::ECalibrationValueSource_Factory;
};

} // namespace dorn::examples
