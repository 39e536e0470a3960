// SPDX-License-Identifier: MIT
/// @file LogLine.hpp
/// A log line in parts, and its form as text.
///
/// The text form is one line of blank-separated fields, the same in every sink:
///
///     2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain CLKS PLL 2 lost its reference
///
/// time (UTC, micro-seconds), severity, EE name and process id, EU name, feature, text. A field without a value is "-".
/// In the names, blanks, control characters and backslashes stand as `\xNN`, so that a name is always one field. In the
/// text, a line feed stands as `\n`, a carriage return as `\r`, every other control character but the tabulator as
/// `\xNN`: whatever is printed, it is one line and says nothing to the terminal.
#pragma once

#include "AaSysLog.h"
#include "port/Clock.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dorn::host {

/// One line of the log.
struct LogLine {
    Nanoseconds wall{}; ///< time since the epoch, UTC; whole micro-seconds when read from text
    /// As it was printed; one that was out of range is NotValid.
    EAaSysLogSeverityLevel severity = EAaSysLogSeverityLevel_NotValid;
    std::string eeName;   ///< name of the process: of a service its own, of other programs the executable's
    std::int32_t pid = 0; ///< its process id
    std::string euName;   ///< empty when the thread was no EU
    /// 0 when the line belongs to no feature, and when it was read from a text that gives only the feature's name.
    std::uint32_t featureId = 0;
    std::string featureName; ///< registered name, else the id as "0x20066"; empty when the line belongs to no feature
    std::string text;        ///< in its one-line form

    bool operator==(const LogLine&) const = default;
};

/// The word for a severity: "notvalid", "debug", "info", "warning", "error", "vip", "none".
std::string_view severityWord(EAaSysLogSeverityLevel severity) noexcept;
/// The severity with this word.
std::optional<EAaSysLogSeverityLevel> severityOf(std::string_view word) noexcept;

/// The line's text form, without a line feed.
std::string formatLogLine(const LogLine& line);

/// Takes a text form, with or without its line feed, apart.
/// @return nothing when @p text is not one.
std::optional<LogLine> parseLogLine(std::string_view text);

} // namespace dorn::host
