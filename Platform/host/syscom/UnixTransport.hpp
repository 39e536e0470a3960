// SPDX-License-Identifier: MIT
/// @file UnixTransport.hpp
/// The transport of one node: connected `AF_UNIX` sockets that keep packet boundaries.
#pragma once

#include "port/Transport.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string>
#include <unordered_map>

namespace dorn::host {

class RunDirectory;

/// The holder of a cpid listens on `<run directory>/cpid/<cpid>`; a process that sends to it keeps one connection,
/// which all its EUs use. For each other node that can be reached the node's gateway listens on
/// `<run directory>/node/<node id>`; a process keeps one connection to that, too. The kernel keeps the order on a
/// connection, names the process at its other end and tells at once when that is gone; a process that comes back is
/// found by connecting again.
class UnixTransport final : public Transport {
public:
    /// @throws EnvironmentError
    UnixTransport();
    ~UnixTransport() override;

    EAaSysComStatus send(TAaSysComCpid receiver, std::span<const std::byte> frame, Nanoseconds patience) override;
    EAaSysComStatus sendToNode(TAaSysComNid node, std::span<const std::byte> frame, Nanoseconds patience) override;
    std::unique_ptr<Endpoint> open(TAaSysComCpid cpid, WaitSet& waitSet, FrameSink& sink) override;

private:
    class Connection;

    /// Who listens: a cpid of this node, or the gateway for another node.
    using Destination = std::uint32_t;
    static constexpr Destination destinationOf(TAaSysComCpid cpid) { return cpid; }
    static constexpr Destination destinationOfNode(TAaSysComNid node) { return 0x10000U + (node & 0xFFFFU); }
    static std::string nameOf(Destination destination);

    EAaSysComStatus sendTo(Destination receiver, std::span<const std::byte> frame, Nanoseconds patience);
    std::shared_ptr<Connection> connectionTo(Destination receiver, EAaSysComStatus& status);
    const Connection* recentConnectionTo(Destination receiver, EAaSysComStatus& status);
    void forget(Destination receiver, const Connection* connection);

    struct Recent;
    static std::array<Recent, 8>& recents();
    static Recent& recentFor(Destination receiver);
    static std::uint64_t newGeneration();

    const RunDirectory& m_directory;
    std::atomic<std::uint64_t> m_generation; ///< changes whenever a connection is given up
    /// Where the gateway has made no room in time though it reads at all times. It is not waited for again, message by
    /// message, wherever to, until there is room at this place.
    std::atomic<Destination> m_hungAt{0};
    std::shared_mutex m_mutex;
    std::unordered_map<Destination, std::shared_ptr<Connection>> m_connections;
};

} // namespace dorn::host
