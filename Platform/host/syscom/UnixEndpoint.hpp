// SPDX-License-Identifier: MIT
/// @file UnixEndpoint.hpp
/// The receiving end of a cpid: a listening socket and the connections of those who send.
#pragma once

#include "port/Transport.hpp"
#include "syscom/UnixSocket.hpp"
#include "syscom/WaitSet.hpp"

#include <cstdint>
#include <list>
#include <memory>
#include <sys/socket.h>

namespace dorn::host {

class RunDirectory;

class UnixEndpoint final : public Endpoint, private WaitSource {
public:
    /// @return null with `errno` set when the socket cannot be made.
    static std::unique_ptr<UnixEndpoint> open(const RunDirectory& directory, TAaSysComCpid cpid, WaitSet& waitSet,
                                              FrameSink& sink);
    ~UnixEndpoint() override;

private:
    class Connection;

    UnixEndpoint(const RunDirectory& directory, TAaSysComCpid cpid, UnixSocket listener, WaitSet& waitSet,
                 FrameSink& sink);
    /// Somebody wants to connect.
    void onReadable() override;
    bool isCredible(const UnixSocket& socket, ucred& credentials) const;
    void accept(UnixSocket socket);
    bool turnAway();

    const RunDirectory& m_directory;
    TAaSysComCpid m_cpid;
    UnixSocket m_listener;
    UnixSocket m_spare = UnixSocket::make();
    std::uint32_t m_turnedAway = 0;
    bool m_isEnding = false;
    WaitSet& m_waitSet;
    FrameSink& m_sink;
    std::list<std::unique_ptr<Connection>> m_connections;
};

} // namespace dorn::host
