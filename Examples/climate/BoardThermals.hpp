// SPDX-License-Identifier: MIT
/// @file BoardThermals.hpp
/// How warm the simulated board gets.
#pragma once

#include <cstdint>

namespace dorn::examples {

/// From which temperatures on the board is warm and hot, degrees Celsius.
struct ThermalLimits {
    std::int32_t warm = 60;
    std::int32_t hot = 75;

    bool operator==(const ThermalLimits&) const = default;
};

/// A board that warms up towards the air around it plus its own heat, and a fan that takes part of that heat away.
class BoardThermals {
public:
    /// Lets one measuring period pass. @param ambient temperature of the air, degrees Celsius
    void step(std::int32_t ambient);

    std::int32_t temperature() const { return m_temperature; } ///< degrees Celsius
    std::uint32_t fanPercent() const { return m_fanPercent; }
    std::uint32_t alarmLevel() const; ///< 0 cool, 1 warm, 2 hot
    bool isHot() const { return m_temperature >= m_limits.hot; }

    const ThermalLimits& limits() const { return m_limits; }
    void setLimits(const ThermalLimits& limits) { m_limits = limits; }

private:
    ThermalLimits m_limits;
    std::int32_t m_temperature = 35;
    std::uint32_t m_fanPercent = 20;
};

} // namespace dorn::examples
