// SPDX-License-Identifier: MIT
/// @file RedundancyText.hpp
/// The services of a redundant unit as people and programs see them.
#pragma once

#include "Console.hpp"
#include "RedundancyMessages.hpp"
#include "answers/MessageText.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// "standby", "active", "between"
std::string roleText(std::uint32_t role);

/// A line about the unit, and a table of its services in the given order if there are any.
std::string redundancyText(std::uint32_t role, const std::vector<examples::SRedundantService>& services,
                           const Names& names, const Console& console);
Json redundancyJson(std::uint32_t role, const std::vector<examples::SRedundantService>& services, const Names& names);

/// "ClimateS 0x0211 after prepare-active: hwapi-failure"
std::string failureText(const examples::SRedundantService& service, const Names& names);

} // namespace dorn::tool
