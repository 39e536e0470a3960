// SPDX-License-Identifier: MIT
#include "RunningBoard.hpp"

#include "answers/ServiceList.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"

#include <cerrno>
#include <chrono>
#include <thread>

namespace dorn::tool {

std::string boardFile(const testkit::TestNode& node, const std::string& services)
{
    node.writeBoardFile("/board.xml", "<board name=\"test\">\n" + services + "</board>\n");
    return node.boardPath("/board.xml");
}

std::string echoElement()
{
    return std::string("<service name=\"EchoS\" program=\"") + DORN_ECHO_SERVICE +
           "\"><restart first=\"0.01\" greatest=\"0.01\" limit=\"100\"/><end status=\"0\"/></service>\n";
}

std::string scriptElement(const std::string& name, const std::string& script, const std::string& parts)
{
    return "<service name=\"" + name + "\" program=\"/bin/sh\" ready=\"start\"><argument>-c</argument><argument>" +
           script + "</argument>" + parts + "</service>\n";
}

std::optional<pid_t> waitingProcess(const std::string& service)
{
    constexpr std::uint32_t waiting = 2;
    for (const host::EeInfo& info : host::PerNode<host::EeTable>::get().list()) {
        const auto state = stateOf(info);
        if (info.name == service && info.alive && state && state->value == waiting) {
            return info.pid;
        }
    }
    return std::nullopt;
}

pid_t awaitWaiting(const std::string& service, pid_t other)
{
    std::optional<pid_t> process;
    const bool isThere = comesTrue([&] {
        process = waitingProcess(service);
        return process && *process != other;
    });
    return isThere ? *process : 0;
}

bool comesTrue(const std::function<bool()>& isSo)
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

bool hasEnded(pid_t pid)
{
    return kill(pid, 0) != 0 && errno == ESRCH;
}

} // namespace dorn::tool
