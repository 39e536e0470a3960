// SPDX-License-Identifier: MIT
#include "gateway/TwoNodes.hpp"

#include "gateway/Gateway.hpp"
#include "node/RunDirectory.hpp"

#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace dorn::benchmarks {
namespace {

constexpr std::array<std::uint16_t, 2> nodes{0x0F01, 0x0F02};
constexpr auto startBound = std::chrono::seconds(10);
constexpr auto pause = std::chrono::milliseconds(10);

std::string runPath()
{
    return host::runPathFromEnvironment();
}

std::string keyFile(std::uint16_t node)
{
    return runPath() + "/key" + std::to_string(node);
}

/// A port that was free a moment ago.
std::uint16_t freePort()
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool isBound = bind(listener, reinterpret_cast<const sockaddr*>(&address), size) == 0 &&
                         getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(listener);
    if (!isBound) {
        throw std::runtime_error("no free TCP port");
    }
    return ntohs(address.sin_port);
}

/// What differs between the rows of the table.
struct Place {
    std::uint16_t port;
    gateway::PublicKey key;
};

gateway::Table tableOf(const std::array<Place, 2>& places)
{
    std::vector<gateway::TableRow> rows;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        rows.push_back({nodes[index], "127.0.0.1", places[index].port, places[index].key});
    }
    return gateway::Table(rows);
}

gateway::Gateway* running = nullptr;

/// A gateway's process. Its queues have room for a whole batch, whoever is the slower one: nothing is dropped, and what
/// is measured is the way, not the loss.
void runGateway(const std::string& address, std::size_t nodeIndex)
{
    const std::size_t comma = address.find(',');
    const std::uint16_t node = nodes.at(nodeIndex);
    const std::array<Place, 2> places{Place{static_cast<std::uint16_t>(std::stoul(address.substr(0, comma))),
                                            gateway::readKeyFile(keyFile(nodes[0])).publicKey},
                                      Place{static_cast<std::uint16_t>(std::stoul(address.substr(comma + 1))),
                                            gateway::readKeyFile(keyFile(nodes[1])).publicKey}};
    const host::RunDirectory directory(runPath(), node);
    gateway::GatewayOptions roomy;
    roomy.queueMessages = roomy.receiverMessages = 4 * batchSize;
    roomy.queueBytes = roomy.receiverBytes = roomy.allReceiversBytes = std::size_t{256} << 20;
    gateway::Gateway gateway(directory, tableOf(places), gateway::readKeyFile(keyFile(node)), roomy);
    running = &gateway;
    std::signal(SIGTERM, [](int) { running->stop(); });
    gateway.run();
}

const PartnerKind gatewayKind("gateway", runGateway);

gateway::FetchedStatus statusOf(std::uint16_t node)
{
    const host::RunDirectory directory(runPath(), node);
    return gateway::fetchStatus(directory);
}

bool isUp(std::uint16_t node)
{
    const gateway::FetchedStatus fetched = statusOf(node);
    return fetched.status && fetched.status->links.size() == 1 &&
           fetched.status->links.front().state == gateway::LinkState::Up;
}

std::unique_ptr<TwoNodes>& instance()
{
    static std::unique_ptr<TwoNodes> both;
    return both;
}

} // namespace

TwoNodes& TwoNodes::get()
{
    if (!instance()) {
        instance().reset(new TwoNodes);
    }
    return *instance();
}

void TwoNodes::end()
{
    instance().reset();
}

TwoNodes::TwoNodes()
{
    for (const std::uint16_t node : nodes) {
        gateway::writeKeyFile(keyFile(node), gateway::makeKeyPair());
    }
    const std::string ports = std::to_string(freePort()) + "," + std::to_string(freePort());
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        m_gateways[index] = std::make_unique<PartnerProcess>("gateway", ports, index);
    }
    const auto end = std::chrono::steady_clock::now() + startBound;
    while (!isUp(nodes[0]) || !isUp(nodes[1])) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("the gateways do not find each other");
        }
        std::this_thread::sleep_for(pause);
    }
}

TwoNodes::~TwoNodes()
{
    for (const auto& process : m_gateways) {
        process->signal(SIGTERM);
    }
}

std::uint64_t TwoNodes::dropped() const
{
    std::uint64_t count = 0;
    for (const std::uint16_t node : nodes) {
        const gateway::FetchedStatus fetched = statusOf(node);
        if (!fetched.status) {
            throw std::runtime_error("a gateway does not answer");
        }
        count += fetched.status->links.front().dropped.sum();
    }
    return count;
}

void TwoNodes::goToOther()
{
    setenv("DORN_NID", std::to_string(nodes[1]).c_str(), 1);
}

} // namespace dorn::benchmarks
