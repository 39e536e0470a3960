// SPDX-License-Identifier: MIT
/// @file AwaitedLog.hpp
/// The log as the steps of the demonstration look at it.
#pragma once

#include "log/LogReader.hpp"

#include <deque>
#include <string>

namespace dorn::demonstration {

/// The node's log from now on.
class AwaitedLog {
public:
    /// Waits for a line whose text ends so, among those that came after the last one that was awaited.
    /// @throws std::runtime_error when none comes in time.
    host::LogLine nextLine(const std::string& ending);

private:
    host::LogReader m_log;
    std::deque<host::LogLine> m_unread;
};

/// Prints a line below the step that has seen it.
void show(const host::LogLine& line);

} // namespace dorn::demonstration
