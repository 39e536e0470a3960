// SPDX-License-Identifier: MIT
/// @file ServiceList.hpp
/// The services of a node as people and programs see them.
#pragma once

#include "Console.hpp"
#include "node/EeTable.hpp"
#include "text/Json.hpp"

#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// The state that a service publishes: its first R&D parameter of the domain "HWAState". Of one that failed: "failed",
/// although a service's object, at its end, writes "ended" in any case.
std::optional<host::EeInfo::Published> stateOf(const host::EeInfo& service);

/// The word for the number of a state: "starting", "waiting", "handling", "ended", "failed"; empty for all others.
std::string stateWord(std::uint32_t state);

/// What a service does, as far as its process lives: "waiting". Of one that is gone: "ended", "failed", or "dead (was
/// waiting)" when it said nothing of its end. Empty for a living service that publishes no state with a word.
std::string conditionOf(const host::EeInfo& service);

/// A table by name: "2 waiting", "2 dead (was waiting)", the number alone where there is no word.
std::string servicesTable(std::vector<host::EeInfo> services, const Console& console);
/// An array by name.
Json servicesJson(std::vector<host::EeInfo> services);
/// One name a line, each once.
std::string serviceNames(std::vector<host::EeInfo> services);

} // namespace dorn::tool
