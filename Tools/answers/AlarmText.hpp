// SPDX-License-Identifier: MIT
/// @file AlarmText.hpp
/// Alarms as people and programs see them.
#pragma once

#include "AlarmMessages.hpp"
#include "Console.hpp"
#include "answers/MessageText.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// The fault that an alarm is about: "board-overheated"; "fault 99" where the catalogue has no name.
std::string alarmFaultText(std::uint32_t faultId);

/// A table in the given order.
std::string alarmsTable(const std::vector<examples::SAlarm>& alarms, const Names& names, const Console& console);
/// An array in the given order.
Json alarmsJson(const std::vector<examples::SAlarm>& alarms, const Names& names);

/// "<time> raised 3 board-overheated board 16 ClimateS 0x0211 count 1 details 4b000000"
std::string alarmEventText(const examples::SAlarmEventInd& event, const Names& names);
Json alarmEventJson(const examples::SAlarmEventInd& event, const Names& names);

} // namespace dorn::tool
