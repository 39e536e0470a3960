// SPDX-License-Identifier: MIT
/// @file LogSettings.hpp
/// What the environment says of the log: `DORN_LOG` and `DORN_LOG_LEVEL`.
#pragma once

#include "AaSysLog.h"

#include <string>
#include <vector>

namespace dorn::host {

/// Where lines go, and which.
struct LogSettings {
    bool toStderr = false;
    bool toRunDirectory = false;
    bool toSyslog = false;
    std::vector<std::string> files{}; ///< paths of ordinary files

    /// Least severity that is kept although the feature is off: Debug, Info, Warning, or NoPrints for none at all.
    EAaSysLogSeverityLevel leastSeverity = EAaSysLogSeverityLevel_Warning;

    bool operator==(const LogSettings&) const = default;
};

/// What is wrong with the environment, one sentence each.
using LogComplaints = std::vector<std::string>;

/// @param sinks value of `DORN_LOG`, null or empty when it is not set
/// @param level value of `DORN_LOG_LEVEL`, likewise
/// @param complaints receives what was not understood and has been passed over
LogSettings parseLogSettings(const char* sinks, const char* level, LogComplaints& complaints);

} // namespace dorn::host
