// SPDX-License-Identifier: MIT
/// @file OcxoCallbackParam.hpp
/// What an OCXO event tells: four values, and which of them it is about. Each function that sets a value marks it as
/// modified and the others as not modified.
#pragma once

#include "boundaryIf/CallbackParam.hpp"

#include <cstdint>

namespace vel::hwapi::clocks::bif::ocxo {

/// What has changed at the oscillator: normally one value, which is marked as modified.
class OcxoCallbackParam : public common::bif::CallbackParam {
public:
    /// @{
    /// Whether the sensors are well, and whether that is what has changed; a failed calibration marks it as well.
    bool isSensorsStatusOk() const { return m_sensor_status; }
    bool isSensorsStatusModified() const { return m_sensor_status_modified; }
    /// @}

    /// @{
    /// Marks the sensors' status alone as modified.
    void setSensorsStatusOk() { setSensorsStatus(true); }
    void setSensorsStatusNok() { setSensorsStatus(false); }
    /// @}

    /// 0: not OK, 1: OK, 2: near the limit of what can be adjusted.
    std::uint8_t getDacSettingStatus() const { return m_dac_settingstatus; }
    /// Whether the DAC's status is what has changed.
    bool isDacSettingStatusModified() const { return m_dac_settingstatus_modified; }
    /// @{
    /// Marks the DAC's status alone as modified.
    void setDacSettingStatusOk() { setDacSettingStatus(1); }
    void setDacSettingStatusNok() { setDacSettingStatus(0); }
    void setDacSettingStatusNearAdjustmentLimit() { setDacSettingStatus(2); }
    /// @}

    /// @{
    /// Whether the calibration data are well, and whether that is what has changed.
    bool isCalibrationDataStatusOk() const { return m_calibration_data_status; }
    bool isCalibrationDataStatusModified() const { return m_calibration_data_status_modified; }
    /// @}

    /// Marks the calibration data's status alone as modified.
    void setCalibrationDataStatusOk()
    {
        m_calibration_data_status = true;
        markModified(Calibration);
    }
    /// Marks the sensors as modified, too.
    void setCalibrationDataStatusFailed()
    {
        m_calibration_data_status = false;
        markModified(Calibration | Sensor);
    }

    /// @{
    /// The oscillator's control value, and whether it is what has changed.
    std::int32_t getOcxoControlValue() const { return m_ocxo_control_value; }
    bool isOcxoControlValueModified() const { return m_ocxo_control_value_update; }
    /// @}

    /// Sets the DAC's status to 0, too, which is not marked as modified.
    void updateOcxoControlValueToMo(std::int32_t value)
    {
        m_ocxo_control_value = value;
        m_dac_settingstatus = 0;
        markModified(ControlValue);
    }

    bool operator==(const OcxoCallbackParam&) const = default;

private:
    enum Value : unsigned { Sensor = 1, Dac = 2, Calibration = 4, ControlValue = 8 };

    void setSensorsStatus(bool ok)
    {
        m_sensor_status = ok;
        markModified(Sensor);
    }
    void setDacSettingStatus(std::uint8_t status)
    {
        m_dac_settingstatus = status;
        markModified(Dac);
    }
    void markModified(unsigned values)
    {
        m_sensor_status_modified = (values & Sensor) != 0;
        m_dac_settingstatus_modified = (values & Dac) != 0;
        m_calibration_data_status_modified = (values & Calibration) != 0;
        m_ocxo_control_value_update = (values & ControlValue) != 0;
    }

    bool m_sensor_status = false;
    std::uint8_t m_dac_settingstatus = 0;
    bool m_sensor_status_modified = false;
    bool m_dac_settingstatus_modified = false;
    bool m_calibration_data_status = true;
    bool m_calibration_data_status_modified = false;
    bool m_ocxo_control_value_update = false;
    std::int32_t m_ocxo_control_value = 0;
};

} // namespace vel::hwapi::clocks::bif::ocxo
