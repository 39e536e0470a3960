// SPDX-License-Identifier: MIT
#include "log/LogLine.hpp"

#include "log/LogText.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace dorn::host {
namespace {

constexpr std::array<std::string_view, 7> severityWords{"notvalid", "debug", "info", "warning", "error", "vip", "none"};
static_assert(severityWords.size() == EAaSysLogSeverityLevel_NoPrints + 1);

/// Cuts the first field off; the rest begins with the next.
std::string_view takeField(std::string_view& rest)
{
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

/// Takes "Clock[4711]" apart.
bool parseProcess(std::string_view field, LogLine& line)
{
    const std::size_t bracket = field.rfind('[');
    if (bracket == std::string_view::npos || bracket == 0 || field.back() != ']') {
        return false;
    }
    const char* const end = field.data() + field.size() - 1;
    const auto [last, error] = std::from_chars(field.data() + bracket + 1, end, line.pid);
    line.eeName = parseLogName(field.substr(0, bracket));
    return error == std::errc() && last == end && line.pid >= 0;
}

/// The id in "0x20066"; 0 when the field is a name.
std::uint32_t hexFeatureId(std::string_view field)
{
    std::uint32_t id = 0;
    if (field.starts_with("0x")) {
        const auto [last, error] = std::from_chars(field.data() + 2, field.data() + field.size(), id, 16);
        if (error != std::errc() || last != field.data() + field.size()) {
            return 0;
        }
    }
    return id;
}

std::string nameField(const std::string& name)
{
    std::string field(std::max<std::size_t>(name.size() * 4, 1), '\0');
    field.resize(static_cast<std::size_t>(writeLogName(field.data(), field.size(), name) - field.data()));
    return field;
}

} // namespace

std::string_view severityWord(EAaSysLogSeverityLevel severity) noexcept
{
    const auto index = static_cast<std::size_t>(severity);
    return severityWords[index < severityWords.size() ? index : 0];
}

std::optional<EAaSysLogSeverityLevel> severityOf(std::string_view word) noexcept
{
    const auto found = std::find(severityWords.begin(), severityWords.end(), word);
    if (found == severityWords.end()) {
        return std::nullopt;
    }
    return static_cast<EAaSysLogSeverityLevel>(found - severityWords.begin());
}

std::string formatLogLine(const LogLine& line)
{
    std::array<char, logTimeLength> time{};
    writeLogTime(time.data(), line.wall);
    std::string text(time.data(), time.size());
    text.append(" ").append(severityWord(line.severity)).append(" ").append(nameField(line.eeName));
    text.append("[").append(std::to_string(line.pid)).append("] ").append(nameField(line.euName));
    text.append(" ").append(nameField(line.featureName)).append(" ");
    const std::size_t begin = text.size();
    text.resize(begin + oneLineLength(line.text));
    writeOneLine(text.data() + begin, line.text);
    return text;
}

std::optional<LogLine> parseLogLine(std::string_view text)
{
    if (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    const auto fields = std::count(text.begin(), text.end(), ' ');
    constexpr int blanks = 5; // one after each field; the text itself may be empty
    if (fields < blanks || text.find('\n') != std::string_view::npos) {
        return std::nullopt;
    }
    LogLine line;
    const std::optional<Nanoseconds> wall = parseLogTime(takeField(text));
    const std::optional<EAaSysLogSeverityLevel> severity = severityOf(takeField(text));
    if (!wall || !severity || *severity == EAaSysLogSeverityLevel_NoPrints || !parseProcess(takeField(text), line)) {
        return std::nullopt;
    }
    line.wall = *wall;
    line.severity = *severity;
    const std::string_view eu = takeField(text);
    const std::string_view feature = takeField(text);
    if (eu.empty() || feature.empty()) {
        return std::nullopt;
    }
    line.euName = parseLogName(eu);
    line.featureName = parseLogName(feature);
    line.featureId = hexFeatureId(feature);
    line.text = text;
    return line;
}

} // namespace dorn::host
