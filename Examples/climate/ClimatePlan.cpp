// SPDX-License-Identifier: MIT
#include "ClimatePlan.hpp"

#include "BoardPlan.hpp"

#include <array>

namespace dorn::examples {
namespace {

constexpr std::int32_t coldest = -40; // degrees Celsius, what the sensor can tell
constexpr std::int32_t hottest = 125;

const char* checkLimits(std::span<const PlanNumber> limits)
{
    return limits[0].value < limits[1].value ? nullptr : "it is hot before it is warm";
}

} // namespace

ThermalLimits plannedLimits(const ThermalLimits& usual)
{
    std::array<PlanNumber, 2> limits{{
        {"warmLimit", coldest, hottest, usual.warm},
        {"hotLimit", coldest, hottest, usual.hot},
    }};
    applyPlan(ERadHwapi_ClimateS, climatePlanObject, limits, checkLimits);
    return {limits[0].value, limits[1].value};
}

} // namespace dorn::examples
