// SPDX-License-Identifier: MIT
/// @file LogObservers.hpp
/// The printing side of LogObserver.hpp.
#pragma once

#include "log/LogLine.hpp"

namespace dorn::host {

/// Whether anybody wants to hear of a line that the calling thread prints now. Costs a load.
bool hasLogObservers() noexcept;
void tellLogObservers(const LogLine& line);

} // namespace dorn::host
