// SPDX-License-Identifier: MIT
#include "FieldCalibration.hpp"

#include <cmath>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::swpllstatemonitor;

namespace {

constexpr double secondsToSettle = 120;
constexpr double secondsToAverage = 120;

} // namespace

void FieldCalibration::step(ESwPllState state, std::int32_t controlValue, double seconds)
{
    if (m_status == EClockCalibrationStatus_Finished) {
        return;
    }
    if (state != ESwPllState_TrackMax) {
        *this = {};
        return;
    }
    m_seconds += seconds;
    if (m_seconds < secondsToSettle) {
        return;
    }
    m_sum += controlValue * seconds;
    m_summedSeconds += seconds;
    m_status = m_summedSeconds < secondsToAverage ? EClockCalibrationStatus_Ongoing : EClockCalibrationStatus_Finished;
}

std::int32_t FieldCalibration::controlValue() const
{
    return static_cast<std::int32_t>(std::lround(m_sum / m_summedSeconds));
}

} // namespace dorn::examples
