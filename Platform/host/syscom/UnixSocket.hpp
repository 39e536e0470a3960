// SPDX-License-Identifier: MIT
/// @file UnixSocket.hpp
/// Names and descriptors of the node's message sockets.
#pragma once

#include "AaSysCom.h"

#include <string>
#include <sys/un.h>

namespace dorn::host {

class RunDirectory;

/// An owned socket descriptor; -1 when it could not be made.
class UnixSocket {
public:
    explicit UnixSocket(int descriptor) : m_descriptor(descriptor) {}
    ~UnixSocket();
    UnixSocket(UnixSocket&& other) noexcept;
    UnixSocket& operator=(UnixSocket&& other) noexcept;

    /// A new socket that keeps packet boundaries. @param flags those of `socket`, besides `SOCK_CLOEXEC`
    static UnixSocket make(int flags = 0);

    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

constexpr const char* socketFolder = "cpid";
constexpr const char* nodeSocketFolder = "node";

/// Name of a cpid's socket in the run directory.
std::string socketName(TAaSysComCpid cpid);
/// Name of the socket for what goes to another node; its gateway listens there.
std::string nodeSocketName(TAaSysComNid node);
/// Address of a socket in the run directory.
sockaddr_un socketAddress(const RunDirectory& directory, const std::string& name);

} // namespace dorn::host
