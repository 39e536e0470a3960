// SPDX-License-Identifier: MIT
/// @file ClockText.hpp
/// The board's clocks as people and programs see them.
#pragma once

#include "ClockMessages.hpp"
#include "Console.hpp"
#include "text/Json.hpp"

#include <string>

namespace dorn::tool {

/// The state of the PLL: "track-max".
std::string clockPllText(const examples::SClockShowResp& clock);
/// The state of the system timer: "in-sync".
std::string clockTimerText(const examples::SClockShowResp& clock);

std::string clockTable(const examples::SClockShowResp& clock, const Console& console);
Json clockJson(const examples::SClockShowResp& clock);

} // namespace dorn::tool
