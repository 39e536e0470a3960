// SPDX-License-Identifier: MIT
#include "BoardThermals.hpp"

#include <algorithm>

namespace dorn::examples {
namespace {

constexpr std::int32_t ownHeat = 25;    ///< what the board adds to the air's temperature without a fan
constexpr std::int32_t fanCooling = 15; ///< what the fan takes away at full speed
constexpr std::int32_t fanStart = 40;   ///< the fan runs faster from here on
constexpr std::int32_t fanPercentPerDegree = 4;
constexpr std::int32_t leastFanPercent = 20;

} // namespace

void BoardThermals::step(std::int32_t ambient)
{
    const std::int32_t cooling = fanCooling * static_cast<std::int32_t>(m_fanPercent) / 100;
    const std::int32_t target = ambient + ownHeat - cooling;
    const std::int32_t difference = target - m_temperature;
    m_temperature += difference / 2 + (difference > 0) - (difference < 0);
    const std::int32_t wanted = leastFanPercent + (m_temperature - fanStart) * fanPercentPerDegree;
    m_fanPercent = static_cast<std::uint32_t>(std::clamp(wanted, leastFanPercent, 100));
}

std::uint32_t BoardThermals::alarmLevel() const
{
    return static_cast<std::uint32_t>(m_temperature >= m_limits.warm) +
           static_cast<std::uint32_t>(m_temperature >= m_limits.hot);
}

} // namespace dorn::examples
