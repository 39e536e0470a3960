// SPDX-License-Identifier: MIT
/// @file UnixEndpoint.hpp
/// A receiving end of the node: a listening socket and the connections of those who send.
#pragma once

#include "port/Transport.hpp"
#include "syscom/UnixSocket.hpp"
#include "syscom/WaitSet.hpp"

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <sys/socket.h>

namespace dorn::host {

class RunDirectory;

class UnixEndpoint final : public Endpoint, private WaitSource {
public:
    /// Listens at @p name in the run directory, where the caller alone may: a socket of that name is a dead process's.
    /// @param label what people call the place, for the log: "cpid 0x04E4"
    /// @return null with `errno` set when the socket cannot be made.
    static std::unique_ptr<UnixEndpoint> open(const RunDirectory& directory, const std::string& name,
                                              const std::string& label, WaitSet& waitSet, FrameSink& sink);
    ~UnixEndpoint() override;

private:
    class Connection;

    UnixEndpoint(const RunDirectory& directory, std::string name, std::string label, UnixSocket listener,
                 WaitSet& waitSet, FrameSink& sink);
    /// Somebody wants to connect.
    void onReadable() override;
    bool isCredible(const UnixSocket& socket, ucred& credentials) const;
    void accept(UnixSocket socket);
    bool turnAway();

    const RunDirectory& m_directory;
    std::string m_name;
    std::string m_label;
    UnixSocket m_listener;
    UnixSocket m_spare = UnixSocket::make();
    std::uint32_t m_turnedAway = 0;
    bool m_isEnding = false;
    WaitSet& m_waitSet;
    FrameSink& m_sink;
    std::list<std::unique_ptr<Connection>> m_connections;
};

} // namespace dorn::host
