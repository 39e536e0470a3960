// SPDX-License-Identifier: MIT
/// @file RioFaultText.hpp
/// RapidIO devices that have been told what goes wrong with them, as people and programs see them.
#pragma once

#include "Console.hpp"
#include "fault/RioFaultStore.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// A table of devices, of which there is at least one.
std::string rioFaultsTable(const std::vector<board::RioFault>& faults, const Console& console);
/// `corruptLeft` is null for a device that spoils every copy.
Json rioFaultsJson(const std::vector<board::RioFault>& faults);

} // namespace dorn::tool
