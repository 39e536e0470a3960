// SPDX-License-Identifier: MIT
/// @file Check.hpp
/// How rules say what they have found.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace dorn::conformance {

/// The rule is broken; the text tells what came instead of what was to come.
class Broken : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The rule cannot be tried here; the text tells why, and what would make it possible.
class Skipped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Ends the rule as broken unless @p holds. @param otherwise what came, as a sentence without a full stop
void expect(bool holds, const std::string& otherwise);

/// Ends the rule as skipped. @param why with the option that would help, where there is one
[[noreturn]] void skip(const std::string& why);

/// A value as it stands in a report.
template <class Value>
std::string shown(const Value& value)
{
    std::ostringstream text;
    if constexpr (std::is_enum_v<Value>) {
        text << static_cast<long long>(value);
    } else if constexpr (std::is_convertible_v<Value, std::string>) {
        text << '"' << value << '"';
    } else {
        text << +value;
    }
    return text.str();
}

/// Ends the rule as broken unless both are equal. @param what whose value it is: "AaSemTake() of a null semaphore"
template <class Value, class Wanted>
void expectEqual(const Value& value, const Wanted& wanted, const std::string& what)
{
    const auto same = static_cast<std::conditional_t<std::is_arithmetic_v<Value>, Value, Wanted>>(wanted);
    expect(value == same, what + ": " + shown(value) + " instead of " + shown(same));
}

using Milliseconds = std::chrono::milliseconds;

/// How long a rule waits for what must happen; generous, and set with `--bound`.
Milliseconds bound();
/// The same in micro-seconds, as the seam's functions want it.
std::int32_t boundOfSeam();

/// How long @p call takes.
Milliseconds durationOf(const std::function<void()>& call);

/// Ends the rule as broken unless @p call takes at least @p least (less one millisecond for clocks that differ) and
/// ends within the bound. One that is to take its time is made several times: on a busy machine too short a wait may
/// take long enough.
void expectDuration(Milliseconds least, const std::string& what, const std::function<void()>& call);

} // namespace dorn::conformance
