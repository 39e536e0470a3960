// SPDX-License-Identifier: MIT
/// @file BoardPlan.hpp
/// The board's plan: a RAML document in the board root, from which services take what they are to go by at their start.
#pragma once

#include "rad/ERadHwapi.h"

#include <cstdint>
#include <span>

namespace dorn::examples {

/// Where the plan lies.
constexpr const char* boardPlanFile = "/opt/dorn/plan.xml";

/// A whole number that a service takes from its managed object of the plan.
struct PlanNumber {
    const char* name;      ///< of the parameter
    std::int32_t least;    ///< that makes sense
    std::int32_t greatest; ///< that makes sense
    std::int32_t value;    ///< what holds without a plan, then what the plan says
};

/// Says what makes no sense about numbers that each make sense alone; null when nothing does.
using PlanCheck = const char* (*)(std::span<const PlanNumber> numbers);

/// Takes the numbers that the plan has for a managed object, all or none; those that it does not have stay. Of several
/// objects of the name the first one in a "plan" block counts. Logs at VIP severity what was taken, or warns why
/// nothing was; a plan that is not there, or is for others, is passed over.
/// @param feature feature id of the service's log lines
/// @param distName distinguished name of the service's managed object
/// @return whether they were taken; otherwise @p numbers are as they were.
bool applyPlan(ERadHwapi feature, const char* distName, std::span<PlanNumber> numbers, PlanCheck check = nullptr);

} // namespace dorn::examples
