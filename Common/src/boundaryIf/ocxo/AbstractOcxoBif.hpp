// SPDX-License-Identifier: MIT
/// @file AbstractOcxoBif.hpp
/// The oven-controlled crystal oscillator (OCXO) that the board's clock comes from: its sensors, its control value, and
/// its calibration.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/ocxo/OcxoCallbackParam.hpp"
#include "boundaryIf/ocxo/OcxoTypes.hpp"

namespace vel::hwapi::clocks::bif::ocxo {

/// Operations that return bool tell whether they have succeeded.
class AbstractOcxoBif : public common::bif::AbstractBif<OcxoCallbackParam> {
public:
    /// Takes the oscillator's events; derived from by clients.
    class AbstractOcxoCallback : public CallbackFunctor {};

    /// What the parameter marks as modified has changed.
    [[gnu::init_priority(101)]] inline static const std::string OCXO_EVENT_NAME = "OcxoEvent";

    /// Registers who is told of changes; the callback stays the caller's and must outlive the interface.
    virtual void setOcxoCallback(AbstractOcxoCallback* callback) { addCallback(OCXO_EVENT_NAME, callback); }

    /// Reads the sensors that are asked for into their places in @p statuses.
    virtual bool getSensorsStatus(ESensorType type, SClkOcxoStatuses* statuses) = 0;
    /// Tunes the oscillator.
    virtual bool setOcxoControlValue(std::int32_t value) = 0;
    /// What the three values mean is up to the driver.
    virtual bool getOcxoCalibrationValue(std::int32_t& first, std::int32_t& second, std::int32_t& third,
                                         ECalibrationValueSource& source) = 0;
    /// Has clients told that the sensors cannot be read.
    virtual void sensorsNotAvailable() = 0;
    /// Has clients told that the calibration data are good.
    virtual void calibrationDataStatusOk() = 0;
    /// Has clients told that the calibration data are not.
    virtual void calibrationDataStatusFailed() = 0;
    /// Has clients told the control value that is in use now.
    virtual void setOcxoControlValueToMo(std::int32_t value) = 0;
    /// What the coefficients mean is up to the driver.
    virtual bool getThermalCoefficient(double& first, double& second, double& third, double& fourth) = 0;
    /// What the arguments mean is up to the driver.
    virtual bool storeCalibrationData(int value, std::string text, std::uint16_t& first, std::uint8_t& second,
                                      std::uint8_t& third) = 0;

protected:
    AbstractOcxoBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractOcxoBif(common::AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #OCXO_EVENT_NAME.
    virtual void callOcxoCallback(OcxoCallbackParam& parameter) { callCallback(OCXO_EVENT_NAME, parameter); }
};

} // namespace vel::hwapi::clocks::bif::ocxo
