// SPDX-License-Identifier: MIT
/// @file LogObserver.hpp
/// Lets tests and tools see this process's log lines as they are kept.
#pragma once

#include "log/LogLine.hpp"

#include <functional>

namespace dorn::host {

using LogObserver = std::function<void(const LogLine&)>;

/// Has @p observer called with each line that this process keeps from now on, whatever sinks there are.
///
/// It is called in the thread that prints the line, before the print returns, and in several threads at once. Lines
/// that it prints itself are kept but not observed. It must not throw, and must not add or remove observers.
/// @return the number under which it is removed.
int addLogObserver(LogObserver observer);

/// Ends the calls of an observer. When this returns, none is under way any more.
void removeLogObserver(int number);

} // namespace dorn::host
