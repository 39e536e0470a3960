// SPDX-License-Identifier: MIT
/// @file BoardThermals.hpp
/// How warm the simulated board gets.
#pragma once

#include <cstdint>

namespace dorn::examples {

/// A board that warms up towards the air around it plus its own heat, and a fan that takes part of that heat away.
class BoardThermals {
public:
    /// Lets one measuring period pass. @param ambient temperature of the air, degrees Celsius
    void step(std::int32_t ambient);

    std::int32_t temperature() const { return m_temperature; } ///< degrees Celsius
    std::uint32_t fanPercent() const { return m_fanPercent; }
    std::uint32_t alarmLevel() const; ///< 0 cool, 1 warm, 2 hot
    bool isHot() const { return m_temperature >= hotLimit; }

private:
    static constexpr std::int32_t warmLimit = 60;
    static constexpr std::int32_t hotLimit = 75;

    std::int32_t m_temperature = 35;
    std::uint32_t m_fanPercent = 20;
};

} // namespace dorn::examples
