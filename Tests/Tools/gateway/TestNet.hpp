// SPDX-License-Identifier: MIT
/// @file TestNet.hpp
/// Some nodes on this machine, each with a gateway in a thread, and those who send and receive on them.
#pragma once

#include "Bound.hpp"
#include "gateway/Gateway.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/Pack.hpp"
#include "syscom/UnixSocket.hpp"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace dorn::gateway::test {

/// Short times, so that what is to be noticed is noticed soon.
GatewayOptions quickOptions();

/// The id of the node at @p place.
constexpr TAaSysComNid nodeId(std::size_t place)
{
    return 0x0101U + static_cast<TAaSysComNid>(place);
}

constexpr TAaSysComSicad addressAt(std::size_t place, TAaSysComCpid cpid)
{
    return nodeId(place) << 16 | cpid;
}

/// A gateway that runs.
class RunningGateway {
public:
    RunningGateway(const host::RunDirectory& directory, const Table& table, const KeyPair& keys,
                   const GatewayOptions& options);
    /// It ends without a word to anybody.
    ~RunningGateway();

private:
    Gateway m_gateway;
    std::thread m_thread;
};

/// Nodes 0 to count - 1 with their directories, keys and the table. No gateway runs at first.
class TestNet {
public:
    explicit TestNet(std::size_t count, const GatewayOptions& options = quickOptions());
    ~TestNet();
    TestNet(const TestNet&) = delete;
    TestNet& operator=(const TestNet&) = delete;

    std::size_t size() const { return m_keys.size(); }
    const host::RunDirectory& directory(std::size_t place) const { return *m_directories[place]; }
    const std::string& runPath() const { return m_runPath; }
    const KeyPair& keys(std::size_t place) const { return m_keys[place]; }
    const std::vector<TableRow>& rows() const { return m_rows; }
    Table table() const { return Table(m_rows); }
    /// The row of @p to as @p from sees it; to be changed before the gateway is started.
    TableRow& seenBy(std::size_t from, std::size_t to) { return m_seen[from][to]; }
    const std::vector<TableRow>& rowsSeenBy(std::size_t from) const { return m_seen[from]; }

    /// A port of this process's own loopback address.
    static std::uint16_t freePort();
    const std::string& host() const { return m_host; }

    void start(std::size_t place);
    void start(std::size_t place, const GatewayOptions& options);
    void startAll();
    void stop(std::size_t place) { m_gateways.erase(place); }

    GatewayStatus status(std::size_t place) const;
    LinkStatus link(std::size_t from, std::size_t to) const;
    /// Waits until all links between running gateways are up.
    [[nodiscard]] bool waitForLinks() const;
    /// Waits until what is accepted from @p from to @p to has been confirmed or dropped.
    [[nodiscard]] bool waitForConfirmed(std::size_t from, std::size_t to) const;

private:
    std::string m_runPath;
    std::string m_host;
    GatewayOptions m_options;
    std::vector<std::unique_ptr<host::RunDirectory>> m_directories;
    std::vector<KeyPair> m_keys;
    std::vector<TableRow> m_rows;
    std::vector<std::vector<TableRow>> m_seen;
    std::map<std::size_t, std::unique_ptr<RunningGateway>> m_gateways;
};

/// Waits until something holds. @return false when it does not within a generous bound.
template <class Holds>
[[nodiscard]] bool waitUntil(const Holds& holds)
{
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// A message as it arrived.
struct Arrived {
    host::FrameHeader header{};
    std::vector<std::byte> payload;
    std::uint32_t number() const; ///< the first word of the payload
};

/// A process of a node that sends to another node.
class NodeSender {
public:
    /// @throws std::system_error when nobody listens.
    NodeSender(const host::RunDirectory& directory, TAaSysComNid node);
    /// Sends bytes as they are, waiting for room. @return false when the gateway is gone.
    bool sendBytes(std::span<const std::byte> bytes) const;
    bool send(TAaSysComSicad sender, TAaSysComSicad receiver, std::uint32_t number, std::size_t size = 16,
              std::uint32_t id = 0x55) const;

private:
    host::UnixSocket m_socket;
};

/// A process of a node that holds a cpid.
class CpidReceiver {
public:
    CpidReceiver(const host::RunDirectory& directory, TAaSysComCpid cpid);
    ~CpidReceiver();
    CpidReceiver(const CpidReceiver&) = delete;
    CpidReceiver& operator=(const CpidReceiver&) = delete;

    /// The next message; nothing when none comes within @p patience.
    std::optional<Arrived> take(std::chrono::milliseconds patience = std::chrono::seconds(20));
    /// Takes @p count messages, or fewer when they do not come.
    std::vector<Arrived> takeAll(std::size_t count);

private:
    bool acceptSome();
    void arrive(std::span<const std::byte> packet);

    const host::RunDirectory& m_directory;
    std::string m_name;
    host::UnixSocket m_listener;
    std::vector<host::UnixSocket> m_connections;
    std::deque<Arrived> m_arrived;
};

} // namespace dorn::gateway::test
