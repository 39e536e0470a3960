// SPDX-License-Identifier: MIT
/// @file ServiceLine.hpp
/// A supervised service as people and programs see it.
#pragma once

#include "Console.hpp"
#include "board/Supervisor.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// What there is to be seen of a service.
struct ServiceLine {
    std::string name;
    std::string pid;   ///< "-" without a process
    std::string state; ///< "waiting", "back-off 3s", "stopped", "failed 0"
    Colour colour;     ///< of the state
    std::string age;   ///< how long its phase has lasted: "3m"
    std::string restarts;
};

/// @param now on the monotonic clock
ServiceLine serviceLine(const SupervisedService& service, host::Nanoseconds now);

/// A table in the given order.
std::string supervisedTable(const std::vector<SupervisedService>& services, host::Nanoseconds now,
                            const Console& console);
/// An array in the given order.
Json supervisedJson(const std::vector<SupervisedService>& services);

} // namespace dorn::tool
