// SPDX-License-Identifier: MIT
/// @file ClimatePlan.hpp
/// What the board's plan says about its climate.
#pragma once

#include "BoardThermals.hpp"

namespace dorn::examples {

/// The managed object of the plan that says how warm the board may get: its parameters warmLimit and hotLimit are
/// degrees Celsius.
constexpr const char* climatePlanObject = "Board=1,Climate=1";

/// The limits that the plan has; @p usual ones where it has none.
ThermalLimits plannedLimits(const ThermalLimits& usual);

} // namespace dorn::examples
