// SPDX-License-Identifier: MIT
#include "GatewayProcesses.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace dorn::gateway::test {
namespace {

/// A variable of the environment has another value while it lives.
class OtherVariable {
public:
    OtherVariable(const char* name, const std::string& value) : m_name(name)
    {
        const char* const before = std::getenv(name);
        m_wasSet = before != nullptr;
        m_before = before ? before : "";
        setenv(name, value.c_str(), 1);
    }
    ~OtherVariable()
    {
        if (m_wasSet) {
            setenv(m_name, m_before.c_str(), 1);
        } else {
            unsetenv(m_name);
        }
    }
    OtherVariable(const OtherVariable&) = delete;
    OtherVariable& operator=(const OtherVariable&) = delete;

private:
    const char* m_name;
    bool m_wasSet = false;
    std::string m_before;
};

} // namespace

void GatewayProcesses::setHost(std::size_t place, const std::string& host)
{
    m_hosts[place] = host;
    for (std::size_t from = 0; from < m_net.size(); ++from) {
        m_net.seenBy(from, place).host = host;
    }
}

std::string GatewayProcesses::writeTable(std::size_t place) const
{
    const std::string path = m_net.runPath() + "/table-" + std::to_string(place);
    std::ofstream table(path);
    for (const TableRow& row : m_net.rowsSeenBy(place)) {
        table << row.node << ' ' << row.host << ' ' << row.port << ' ' << row.key.text() << '\n';
    }
    return path;
}

std::string GatewayProcesses::writeKeys(std::size_t place) const
{
    const std::string path = m_net.runPath() + "/key-" + std::to_string(place);
    writeKeyFile(path, m_net.keys(place), OldKey::Replaced);
    return path;
}

void GatewayProcesses::start(std::size_t place, const std::vector<std::string>& within)
{
    const OtherVariable node("DORN_NID", std::to_string(nodeId(place)));
    const OtherVariable directory("DORN_RUN_DIR", m_net.runPath());
    const auto host = m_hosts.find(place);
    std::vector<std::string> command = within;
    command.insert(command.end(), {DORN_GATEWAY_PROGRAM, writeTable(place), writeKeys(place),
                                   host == m_hosts.end() ? m_net.host() : host->second, std::to_string(m_silence)});
    m_gateways.erase(place);
    auto& gateway = m_gateways[place] = std::make_unique<testkit::Process>(
        command.front(), std::vector<std::string>(command.begin() + 1, command.end()));
    if (!gateway->waitForOutput("ready")) {
        throw std::runtime_error("gateway " + std::to_string(place) + ": " + gateway->standardError());
    }
}

std::size_t GatewayProcesses::descriptors(std::size_t place) const
{
    const std::filesystem::directory_iterator all("/proc/" + std::to_string(pid(place)) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

} // namespace dorn::gateway::test
