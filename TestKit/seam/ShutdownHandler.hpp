// SPDX-License-Identifier: MIT
/// @file ShutdownHandler.hpp
/// The process's shutdown handler, as its wrapper has seen it set.
#pragma once

#include "AaStartup.h"
#include "Bound.hpp"

#include <functional>

namespace dorn::testkit {

void noteShutdownHandler(TAaStartupShutdownHandler handler);

/// Asks the service that runs in this process to end, as the platform does when the process is told to; waits until
/// there is a handler to ask, or until @p isEnough, which is asked again after stirShutdownWait().
/// @return false when neither has come within @p bound.
bool requestShutdown(Bound bound, const std::function<bool()>& isEnough);
void stirShutdownWait();

} // namespace dorn::testkit
