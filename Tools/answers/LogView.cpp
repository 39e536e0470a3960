// SPDX-License-Identifier: MIT
#include "answers/LogView.hpp"

#include "Outcome.hpp"
#include "log/LogText.hpp"
#include "text/Values.hpp"

#include <algorithm>

namespace dorn::tool {
namespace {

bool isOneOf(const std::vector<std::string>& wanted, const std::string& name)
{
    return wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end();
}

bool isFeature(const std::string& wanted, const host::LogLine& line)
{
    const std::optional<std::uint64_t> number = readNumber(wanted);
    return wanted == line.featureName || (number && *number != 0 && *number == line.featureId);
}

Colour colourOf(EAaSysLogSeverityLevel severity)
{
    switch (severity) {
    case EAaSysLogSeverityLevel_Warning:
        return Colour::Yellow;
    case EAaSysLogSeverityLevel_Error:
    case EAaSysLogSeverityLevel_Vip:
        return Colour::Red;
    case EAaSysLogSeverityLevel_Debug:
        return Colour::Faint;
    default:
        return Colour::None;
    }
}

} // namespace

bool LogFilter::accepts(const host::LogLine& line) const
{
    const bool isWantedFeature =
        features.empty() || std::any_of(features.begin(), features.end(),
                                        [&line](const std::string& feature) { return isFeature(feature, line); });
    return isWantedFeature && isOneOf(services, line.eeName) && (!leastSeverity || line.severity >= *leastSeverity);
}

EAaSysLogSeverityLevel parseSeverity(const std::string& what, const std::string& word)
{
    const std::optional<EAaSysLogSeverityLevel> severity = host::severityOf(word);
    if (!severity || *severity < EAaSysLogSeverityLevel_Debug || *severity > EAaSysLogSeverityLevel_Vip) {
        throw UsageError(what + ": '" + word + "' is none of debug, info, warning, error, vip");
    }
    return *severity;
}

std::string logLineText(const host::LogLine& line, const Console& console)
{
    constexpr std::size_t severityBegin = host::logTimeLength + 1;
    const std::string text = host::formatLogLine(line);
    const std::string_view severity = host::severityWord(line.severity);
    return text.substr(0, severityBegin) + console.paint(colourOf(line.severity), severity) +
           text.substr(severityBegin + severity.size());
}

Json logLineJson(const host::LogLine& line)
{
    return {
        {"time", timeText(line.wall)}, {"severity", host::severityWord(line.severity)},
        {"service", line.eeName},      {"pid", line.pid},
        {"eu", line.euName},           {"feature", line.featureName},
        {"featureId", line.featureId}, {"text", line.text},
    };
}

} // namespace dorn::tool
