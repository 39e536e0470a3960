// SPDX-License-Identifier: MIT
/// @file DriverFaultText.hpp
/// Driver functions that have been told to fail, as people and programs see them.
#pragma once

#include "Console.hpp"
#include "fault/FaultStore.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// A table of faults, of which there is at least one.
std::string driverFaultsTable(const std::vector<board::DriverFault>& faults, const Console& console);
/// A table of the results of functions that fail, with what each means.
std::string driverResultsTable(const Console& console);
/// "ddal_fpga_update_mod: the next 3 calls fail with 12 (device does not answer)"
std::string driverFaultText(const board::DriverFault& fault);
/// `left` is null for a function of which every call fails, `code` where the board loses its power.
Json driverFaultJson(const board::DriverFault& fault);

} // namespace dorn::tool
