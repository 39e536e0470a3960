// SPDX-License-Identifier: MIT
/// @file EventText.hpp
/// What happens on a board that is run, and how it is told.
#pragma once

#include "port/Clock.hpp"

#include <cstddef>
#include <functional>
#include <string>

namespace dorn::tool {

/// How good a piece of news is.
enum class News {
    Plain,
    Good,
    Bad,
    Said ///< no more than what a service prints
};

struct SupervisorEvent {
    host::Nanoseconds wall; ///< when it happened
    std::string service;    ///< empty for the whole board
    std::string text;
    News news;
};

using EventSink = std::function<void(const SupervisorEvent&)>;

/// "LedS: runs", "board: reset"; on one line, and nothing in it speaks to a terminal.
std::string sentence(const SupervisorEvent& event);
/// "2026-11-21T09:18:01.123456Z LedS: runs"
std::string eventLine(const SupervisorEvent& event);

/// A line that begins with a time as eventLine() writes it, without the date and with so many characters of the time.
std::string withoutDate(const std::string& line, std::size_t timeLength);
constexpr std::size_t lengthToSeconds = sizeof("09:18:01") - 1;
constexpr std::size_t lengthToMilliseconds = sizeof("09:18:01.123") - 1;

/// "ended with status 1", "killed by signal 9 (Killed)"
std::string endText(int status);

/// "200 ms", "5 s", "1.5 s": as short as it can be said.
std::string delayText(host::Nanoseconds delay);

/// "0s", "59s", "3m", "2h", "4d": how long something has lasted, in three characters as far as that goes.
std::string ageText(host::Nanoseconds age);

} // namespace dorn::tool
