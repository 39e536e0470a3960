// SPDX-License-Identifier: MIT
#include "log/LogSettings.hpp"

#include "log/LogLine.hpp"

#include <algorithm>
#include <optional>
#include <string_view>

namespace dorn::host {
namespace {

constexpr std::string_view filePrefix = "file:";

/// Notes one of the sinks in the comma-separated list. @return whether there is such a sink.
bool addSink(LogSettings& settings, std::string_view word)
{
    if (word == "stderr") {
        settings.toStderr = true;
    } else if (word == "file") {
        settings.toRunDirectory = true;
    } else if (word == "syslog") {
        settings.toSyslog = true;
    } else if (word.starts_with(filePrefix) && word.size() > filePrefix.size()) {
        const std::string path(word.substr(filePrefix.size()));
        if (std::find(settings.files.begin(), settings.files.end(), path) == settings.files.end()) {
            settings.files.push_back(path);
        }
    } else {
        return word == "none";
    }
    return true;
}

void addDefaultSinks(LogSettings& settings)
{
    settings.toStderr = true;
    settings.toRunDirectory = true;
}

void parseSinks(LogSettings& settings, std::string_view list, LogComplaints& complaints)
{
    bool isAnyKnown = false;
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const std::string_view word = list.substr(0, comma);
        list.remove_prefix(std::min(comma + 1, list.size()));
        if (addSink(settings, word)) {
            isAnyKnown = true;
        } else {
            complaints.push_back("DORN_LOG: '" + std::string(word) +
                                 "' is no sink (stderr, file, file:PATH, syslog, none); it is left out");
        }
    }
    if (!isAnyKnown) {
        addDefaultSinks(settings);
    }
}

std::optional<EAaSysLogSeverityLevel> parseLevel(std::string_view text)
{
    if (text.size() == 1 && text.front() >= '1' && text.front() <= '6') {
        return static_cast<EAaSysLogSeverityLevel>(text.front() - '0');
    }
    const std::optional<EAaSysLogSeverityLevel> level = severityOf(text);
    return level == EAaSysLogSeverityLevel_NotValid ? std::nullopt : level;
}

} // namespace

LogSettings parseLogSettings(const char* sinks, const char* level, LogComplaints& complaints)
{
    LogSettings settings;
    parseSinks(settings, sinks ? sinks : "", complaints);
    if (!level || !*level) {
        return settings;
    }
    const std::optional<EAaSysLogSeverityLevel> parsed = parseLevel(level);
    if (!parsed) {
        complaints.push_back("DORN_LOG_LEVEL: '" + std::string(level) +
                             "' is no level (debug, info, warning, error, vip, none, or 1 to 6); warning is used");
    } else if (*parsed == EAaSysLogSeverityLevel_NoPrints) {
        settings.leastSeverity = *parsed;
    } else {
        settings.leastSeverity = std::min(*parsed, EAaSysLogSeverityLevel_Warning);
    }
    return settings;
}

} // namespace dorn::host
