// SPDX-License-Identifier: MIT
/// @file GatewayProcesses.hpp
/// Some nodes on this machine, each of whose gateways is a process of its own.
#pragma once

#include "Process.hpp"
#include "TestNet.hpp"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::gateway::test {

/// The nodes of a TestNet. No gateway runs at first, and those that run are killed at the end.
class GatewayProcesses {
public:
    explicit GatewayProcesses(std::size_t count) : m_net(count) {}

    const TestNet& net() const { return m_net; }
    /// Has the gateway at @p place listen at @p host, and all that are started from now on look for it there.
    void setHost(std::size_t place, const std::string& host);

    /// Starts a gateway and waits until it is ready.
    /// @param within command, if any, that runs it somewhere
    /// @throws std::runtime_error when it does not become ready.
    void start(std::size_t place, const std::vector<std::string>& within = {});
    /// Has gateways that are started from now on take a link for dead after so many milliseconds.
    void setSilence(unsigned milliseconds) { m_silence = milliseconds; }
    void kill(std::size_t place) { m_gateways.erase(place); }

    testkit::Process& gateway(std::size_t place) { return *m_gateways.at(place); }
    pid_t pid(std::size_t place) const { return m_gateways.at(place)->pid(); }
    /// How many descriptors a gateway has open.
    std::size_t descriptors(std::size_t place) const;

private:
    std::string writeTable(std::size_t place) const;
    std::string writeKeys(std::size_t place) const;

    TestNet m_net;
    std::map<std::size_t, std::string> m_hosts;
    unsigned m_silence = 2000;
    std::map<std::size_t, std::unique_ptr<testkit::Process>> m_gateways;
};

} // namespace dorn::gateway::test
