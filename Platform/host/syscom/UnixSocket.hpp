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

/// Name of a cpid's socket in the run directory.
std::string socketName(TAaSysComCpid cpid);
/// Its address.
sockaddr_un socketAddress(const RunDirectory& directory, TAaSysComCpid cpid);

} // namespace dorn::host
