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
#include <unordered_map>

namespace dorn::host {

class RunDirectory;

/// The holder of a cpid listens on `<run directory>/cpid/<cpid>`; a process that sends to it keeps one connection,
/// which all its EUs use. The kernel keeps the order on a connection, names the process at its other end and tells at
/// once when that is gone; a process that comes back is found by connecting again.
class UnixTransport final : public Transport {
public:
    /// @throws EnvironmentError
    UnixTransport();
    ~UnixTransport() override;

    EAaSysComStatus send(TAaSysComCpid receiver, std::span<const std::byte> frame, Nanoseconds patience) override;
    std::unique_ptr<Endpoint> open(TAaSysComCpid cpid, WaitSet& waitSet, FrameSink& sink) override;

private:
    class Connection;

    std::shared_ptr<Connection> connectionTo(TAaSysComCpid receiver, EAaSysComStatus& status);
    const Connection* recentConnectionTo(TAaSysComCpid receiver, EAaSysComStatus& status);
    void forget(TAaSysComCpid receiver, const Connection* connection);

    struct Recent;
    static std::array<Recent, 8>& recents();
    static Recent& recentFor(TAaSysComCpid receiver);
    static std::uint64_t newGeneration();

    const RunDirectory& m_directory;
    std::atomic<std::uint64_t> m_generation; ///< changes whenever a connection is given up
    std::shared_mutex m_mutex;
    std::unordered_map<TAaSysComCpid, std::shared_ptr<Connection>> m_connections;
};

} // namespace dorn::host
