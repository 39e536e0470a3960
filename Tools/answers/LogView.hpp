// SPDX-License-Identifier: MIT
/// @file LogView.hpp
/// Which lines of the log to show, and how.
#pragma once

#include "Console.hpp"
#include "log/LogLine.hpp"
#include "text/Json.hpp"

#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// Accepts a line that meets all that is asked for.
struct LogFilter {
    std::vector<std::string> features; ///< names ("FIRM") or numbers ("0x20054"); any of them
    std::vector<std::string> services; ///< any of them
    std::optional<EAaSysLogSeverityLevel> leastSeverity;

    bool accepts(const host::LogLine& line) const;
    bool isOpen() const { return features.empty() && services.empty() && !leastSeverity; }
};

/// A severity by its word: debug, info, warning, error, vip. @throws UsageError
EAaSysLogSeverityLevel parseSeverity(const std::string& what, const std::string& word);

/// The line's text form; its severity in colour.
std::string logLineText(const host::LogLine& line, const Console& console);
Json logLineJson(const host::LogLine& line);

} // namespace dorn::tool
