// SPDX-License-Identifier: MIT
/// @file GatewayText.hpp
/// A gateway and its links as people and programs see them.
#pragma once

#include "Console.hpp"
#include "gateway/Status.hpp"
#include "port/Clock.hpp"
#include "text/Json.hpp"

#include <string>

namespace dorn::tool {

/// A line about the gateway, a table of its links if there are any, a line about what was refused if anything was.
/// @param now wall time at which the status was told
std::string gatewayText(const gateway::GatewayStatus& status, host::Nanoseconds now, const Console& console);

/// All of it; every reason has its count, 0 as well. Epochs are texts: they have 64 bits.
Json gatewayJson(const gateway::GatewayStatus& status, host::Nanoseconds now);

/// "node 0x0F02 is not up: connecting, unreachable"
std::string downText(const gateway::LinkStatus& link);

} // namespace dorn::tool
