// SPDX-License-Identifier: MIT
#include "OcxoModel.hpp"

#include <algorithm>
#include <cmath>

namespace dorn::examples {
namespace {

constexpr double agedSinceFactory = 40; // ppb
constexpr double agingPerDay = 0.5;     // ppb
constexpr double secondsPerDay = 86400;
constexpr double warmUpError = 20;       // ppb at power-on
constexpr double warmUpSeconds = 600;    // after which a third of it is left
constexpr double errorPerMissing = -0.5; // ppb for each degree that the oven lacks
constexpr double ovenSeconds = 8;
constexpr double outerOvenSeconds = 12;
constexpr double caseSeconds = 60;
constexpr double greatestOvenCurrent = 400; // milliamperes
constexpr double holdCurrentPerDegree = 2;  // between the oven and the air
constexpr double heatCurrentPerDegree = 6;  // that the oven lacks

/// What comes near to @p target with the time constant @p constant.
double approach(double value, double target, double seconds, double constant)
{
    return target + (value - target) * std::exp(-seconds / constant);
}

} // namespace

OcxoModel::OcxoModel(double air)
    : m_offset(pullPerStep * (middleControlValue - factoryControlValue) + agedSinceFactory),
      m_air(air),
      m_case(air),
      m_outerOven(air),
      m_oven(air)
{
}

void OcxoModel::step(double seconds, double air)
{
    m_seconds += seconds;
    m_air = air;
    m_case = approach(m_case, air, seconds, caseSeconds);
    m_outerOven = approach(m_outerOven, outerOvenSetPoint, seconds, outerOvenSeconds);
    m_oven = approach(m_oven, ovenSetPoint, seconds, ovenSeconds);
}

double OcxoModel::frequencyError() const
{
    const double aging = agingPerDay * m_seconds / secondsPerDay;
    const double warmUp = warmUpError * std::exp(-m_seconds / warmUpSeconds);
    const double cold = errorPerMissing * (ovenSetPoint - m_oven);
    const double pull = pullPerStep * (m_controlValue - middleControlValue);
    return m_offset + aging + warmUp + cold + thermalError() + pull;
}

double OcxoModel::thermalError() const
{
    const double degrees = m_case - 25;
    double error = 0;
    for (auto coefficient = thermalCoefficients.rbegin(); coefficient != thermalCoefficients.rend(); ++coefficient) {
        error = error * degrees + *coefficient;
    }
    return error;
}

double OcxoModel::ovenCurrent() const
{
    const double wanted =
        holdCurrentPerDegree * (ovenSetPoint - m_air) + heatCurrentPerDegree * (ovenSetPoint - m_oven);
    return std::clamp(wanted, 0.0, greatestOvenCurrent);
}

} // namespace dorn::examples
