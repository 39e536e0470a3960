// SPDX-License-Identifier: MIT
#include "syscom/UnixSocket.hpp"

#include "node/RunDirectory.hpp"
#include "port/CancellationOff.hpp"

#include <array>
#include <cstdio>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace dorn::host {

UnixSocket::~UnixSocket()
{
    if (m_descriptor >= 0) {
        const CancellationOff off; // a destructor must not be left by unwinding
        close(m_descriptor);
    }
}

UnixSocket::UnixSocket(UnixSocket&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

UnixSocket& UnixSocket::operator=(UnixSocket&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

UnixSocket UnixSocket::make(int flags)
{
    return UnixSocket(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0));
}

namespace {

std::string nameInFolder(const char* folder, unsigned id)
{
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "%s/%04x", folder, id);
    return name.data();
}

} // namespace

std::string socketName(TAaSysComCpid cpid)
{
    return nameInFolder(socketFolder, cpid);
}

std::string nodeSocketName(TAaSysComNid node)
{
    return nameInFolder(nodeSocketFolder, node & 0xFFFFU);
}

sockaddr_un socketAddress(const RunDirectory& directory, const std::string& name)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = directory.shortPath(name);
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

} // namespace dorn::host
