// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "RadWait.hpp"
#include "config/RadStore.hpp"
#include "rad/ERadHwapiState.h"

#include <ostream>
#include <regex>
#include <stdexcept>

namespace dorn::tool {

void PrintTo(const CommandResult& result, std::ostream* stream)
{
    *stream << "status " << result.status << "\n" << result.answer << "--- standard error:\n" << result.remarks;
}

CommandResult dorn(const std::vector<std::string>& arguments)
{
    return DornCommand(arguments).result();
}

DornCommand::DornCommand(const std::vector<std::string>& arguments) : Process(DORN_COMMAND, arguments) {}

CommandResult DornCommand::result()
{
    const int status = waitForEnd();
    return {status, standardOutput(), standardError()};
}

bool DornCommand::waitForOutputOf(const std::function<void()>& action, const std::string& text)
{
    constexpr testkit::Bound patience(20);
    for (auto waited = testkit::Bound(0); waited < testkit::generousBound && isRunning(); waited += patience) {
        action();
        if (waitForOutput(text, patience)) {
            return true;
        }
    }
    // What the command wrote at its end may not have been read yet.
    return !isRunning() && waitForOutput(text, testkit::generousBound);
}

EchoService::EchoService() : Process(DORN_ECHO_SERVICE)
{
    if (!testkit::waitForRad(ERadHwapiState_BasebandState, 2)) {
        throw std::runtime_error("EchoS does not start: " + standardError());
    }
}

std::string withoutTimes(const std::string& text)
{
    static const std::regex time(R"(\d{4}-\d{2}-\d{2}T\d{2}:\d{2}:\d{2}(\.\d{6})?Z)");
    return std::regex_replace(text, time, "TIME");
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

} // namespace dorn::tool
