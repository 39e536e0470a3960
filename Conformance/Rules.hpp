// SPDX-License-Identifier: MIT
/// @file Rules.hpp
/// All rules and roles, a table per subject.
#pragma once

#include "Rule.hpp"

#include <vector>

namespace dorn::conformance {

using Rules = std::span<const Rule>;
using Roles = std::span<const Role>;

Rules startupRules();
Rules euRules();
Rules addressRules();
Rules messageRules();
Rules receiveRules();
Rules semaphoreRules();
Rules parameterRules();
Rules tagRules();
Rules observerRules();
Rules logRules();
Rules memoryRules();
Rules fileRules();
Rules timerRules();
Rules troubleRules();
Rules xmlRules();
Rules identityRules();
Rules driverRules();
Rules flashRules();
Rules rapidIoRules();
Rules resetRules();

Roles startupRoles();
Roles addressRoles();
Roles messageRoles();
Roles parameterRoles();
Roles tagRoles();
Roles observerRoles();

/// Every rule, in the order in which a port is best made; the one that resets the unit is the last.
std::vector<Rule> allRules();
/// The rule of an id; null when there is none.
const Rule* findRule(std::string_view id);
/// The role of a name; null when there is none.
const Role* findRole(std::string_view name);

} // namespace dorn::conformance
