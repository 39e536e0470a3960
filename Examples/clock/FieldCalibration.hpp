// SPDX-License-Identifier: MIT
/// @file FieldCalibration.hpp
/// Learns in the field with which control value the oscillator's frequency is right.
#pragma once

#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"

#include <cstdint>

namespace dorn::examples {

/// When the PLL has tracked with its longest time constant for two minutes, the control values of two more minutes are
/// averaged. A PLL that does anything else meanwhile begins that anew. Once finished it stays so.
class FieldCalibration {
public:
    using Status = vel::hwapi::common::bif::swpllstatemonitor::EClockCalibrationStatus;
    using PllState = vel::hwapi::common::bif::swpllstatemonitor::ESwPllState;

    void step(PllState state, std::int32_t controlValue, double seconds);

    Status status() const { return m_status; }
    /// The average; when it is finished.
    std::int32_t controlValue() const;

private:
    Status m_status = vel::hwapi::common::bif::swpllstatemonitor::EClockCalibrationStatus_NotStarted;
    double m_seconds = 0; ///< that the PLL has tracked so
    double m_sum = 0;     ///< of the control values, each times its seconds
    double m_summedSeconds = 0;
};

} // namespace dorn::examples
