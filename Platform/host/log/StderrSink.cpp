// SPDX-License-Identifier: MIT
#include "log/StderrSink.hpp"

#include "log/LogText.hpp"
#include "port/StandardStreams.hpp"

#include <algorithm>
#include <array>

namespace dorn::host {
namespace {

/// What a terminal is told before each severity and behind it.
constexpr std::array<std::string_view, EAaSysLogSeverityLevel_Vip + 1> colours{
    "\x1b[36m", "\x1b[36m", "\x1b[32m", "\x1b[33m\x1b[1m", "\x1b[31m\x1b[1m", "\x1b[1m\x1b[41m"};
constexpr std::string_view colourEnd = "\x1b[m";

/// How long a file is taken for one: a look costs about as much as the line.
constexpr Nanoseconds lookPeriod = std::chrono::milliseconds(100);

std::string coloured(EAaSysLogSeverityLevel severity, std::string_view line)
{
    constexpr std::size_t begin = logTimeLength + 1;
    const std::size_t end = std::min(line.find(' ', begin), line.size());
    const auto index = static_cast<std::size_t>(severity);
    std::string text(line.substr(0, begin));
    text += colours[index < colours.size() ? index : 0];
    text += line.substr(begin, end - begin);
    text += colourEnd;
    return text += line.substr(end);
}

} // namespace

std::size_t StderrSink::writeWhatGoes(std::string_view text)
{
    const Nanoseconds now = Clock::get().monotonic();
    if (now >= m_lookAgainAt) {
        m_isReady = isStandardErrorAlwaysReady();
        m_lookAgainAt = now + lookPeriod;
    }
    return m_isReady ? writeToReadyStandardError(text)
                     : writeToStandardError(text, m_isStalled ? Nanoseconds(0) : standardErrorPatience);
}

bool StderrSink::put(std::string_view text)
{
    const std::size_t done = writeWhatGoes(text);
    m_isStalled = done != text.size();
    if (done != 0) {
        m_isMidLine = text[done - 1] != '\n';
    }
    return !m_isStalled;
}

void StderrSink::write(EAaSysLogSeverityLevel severity, std::string_view line)
{
    if (m_dropped != 0) {
        const std::string gap =
            std::string(m_isMidLine ? "\n" : "") +
            "dorn: standard error could not be written; lines dropped: " + std::to_string(m_dropped) + "\n";
        if (!put(gap)) {
            ++m_dropped;
            return;
        }
        m_dropped = 0;
    }
    if (!(m_isColoured ? put(coloured(severity, line)) : put(line))) {
        ++m_dropped;
    }
}

} // namespace dorn::host
