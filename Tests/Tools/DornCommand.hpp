// SPDX-License-Identifier: MIT
/// @file DornCommand.hpp
/// The executable `dorn` on the node of a test, and a service for it to look at.
#pragma once

#include "Process.hpp"

#include <functional>
#include <string>
#include <vector>

namespace dorn::tool {

/// What a command came to.
struct CommandResult {
    int status;
    std::string answer;  ///< standard output
    std::string remarks; ///< standard error

    bool operator==(const CommandResult&) const = default;
};
void PrintTo(const CommandResult& result, std::ostream* stream);

/// Runs `dorn` to its end.
CommandResult dorn(const std::vector<std::string>& arguments);

/// `dorn`, running.
class DornCommand : public testkit::Process {
public:
    explicit DornCommand(const std::vector<std::string>& arguments);

    /// Waits for the end.
    CommandResult result();
    /// Does something again and again until the command has printed @p text: so it is known to look on.
    /// @return false when it does not within a generous bound.
    [[nodiscard]] bool waitForOutputOf(const std::function<void()>& action, const std::string& text);
};

/// The service EchoS: cpid 0x0300, state R&D parameter "BasebandState", answers 0x3001 with 0x3002 and the same text,
/// fails at 0x3003.
class EchoService : public testkit::Process {
public:
    /// Starts it and waits until it waits for messages.
    EchoService();
};

/// @p text with every time of the log's form replaced by "TIME".
std::string withoutTimes(const std::string& text);
/// @p text with every @p from replaced.
std::string replaced(std::string text, const std::string& from, const std::string& to);

} // namespace dorn::tool
