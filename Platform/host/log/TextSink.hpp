// SPDX-License-Identifier: MIT
/// @file TextSink.hpp
/// Where lines go besides the run directory: standard error, an ordinary file, the system's log daemon.
#pragma once

#include "AaSysLog.h"
#include "log/RotatingFile.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace dorn::host {

/// Writes lines somewhere. Not for several threads at once.
class TextSink {
public:
    virtual ~TextSink() = default;
    /// @param line the line with its line feed
    virtual void write(EAaSysLogSeverityLevel severity, std::string_view line) = 0;
};

/// Standard error; the severity is coloured on a terminal unless `NO_COLOR` is set or `TERM` is "dumb".
std::unique_ptr<TextSink> openStderrSink();
/// An ordinary file. @throws EnvironmentError when it cannot be opened.
std::unique_ptr<TextSink> openFileSink(const std::string& path, const RotationLimits& limits = {});
/// The system's log daemon, which adds the time: lines come without. @throws EnvironmentError when there is none at
/// @p socketPath.
std::unique_ptr<TextSink> openSyslogSink(const std::string& socketPath = "/dev/log");

} // namespace dorn::host
