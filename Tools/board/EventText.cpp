// SPDX-License-Identifier: MIT
#include "board/EventText.hpp"

#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace dorn::tool {

std::string sentence(const SupervisorEvent& event)
{
    return (event.service.empty() ? "board" : printable(event.service)) + ": " + printable(event.text);
}

std::string eventLine(const SupervisorEvent& event)
{
    return timeText(event.wall) + " " + sentence(event);
}

std::string withoutDate(const std::string& line, std::size_t timeLength)
{
    constexpr std::size_t dateLength = sizeof("2026-11-21T") - 1;
    const std::size_t blank = std::min(line.find(' '), line.size());
    return line.size() < dateLength ? line : line.substr(dateLength, timeLength) + line.substr(blank);
}

std::string endText(int status)
{
    if (status >= 0) {
        return "ended with status " + std::to_string(status);
    }
    const char* const name = sigdescr_np(-status);
    return "killed by signal " + std::to_string(-status) + (name ? std::string(" (") + name + ")" : "");
}

std::string delayText(host::Nanoseconds delay)
{
    using Milliseconds = std::chrono::milliseconds;
    const auto milliseconds = std::chrono::duration_cast<Milliseconds>(delay).count();
    if (milliseconds < 1000) {
        return std::to_string(milliseconds) + " ms";
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4g s", static_cast<double>(milliseconds) / 1000);
    return text.data();
}

std::string ageText(host::Nanoseconds age)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age).count();
    constexpr std::array<std::pair<std::int64_t, char>, 3> units{{{86400, 'd'}, {3600, 'h'}, {60, 'm'}}};
    for (const auto& [size, letter] : units) {
        if (seconds >= size) {
            return std::to_string(seconds / size) + letter;
        }
    }
    return std::to_string(seconds < 0 ? 0 : seconds) + "s";
}

} // namespace dorn::tool
