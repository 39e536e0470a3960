// SPDX-License-Identifier: MIT
#include "gateway/StatusServer.hpp"

#include "port/FilePort.hpp"

#include <cerrno>
#include <cstring>
#include <new>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace dorn::gateway {
namespace {

using host::Clock;
using host::UnixSocket;

constexpr int socketBufferBytes = 1 << 19; ///< a status of the greatest table fits
constexpr std::size_t greatestStatus = std::size_t{1} << 18;

} // namespace

StatusServer::StatusServer(const host::RunDirectory& directory, host::WaitSet& waitSet, Source source)
    : m_directory(directory),
      m_waitSet(waitSet),
      m_source(std::move(source)),
      m_listener(UnixSocket::make(SOCK_NONBLOCK))
{
    host::FilePort::get().remove(directory.descriptor(), statusSocketName);
    const sockaddr_un address = host::socketAddress(directory, statusSocketName);
    if (!m_listener || bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(m_listener.get(), SOMAXCONN) != 0) {
        throw host::EnvironmentError("the status socket in " + directory.path() +
                                     " cannot be made: " + std::strerror(errno));
    }
    m_waitSet.add(m_listener.get(), *this);
}

StatusServer::~StatusServer()
{
    const std::lock_guard lock(m_waitSet.mutex());
    m_waitSet.remove(m_listener.get());
    host::FilePort::get().remove(m_directory.descriptor(), statusSocketName);
}

void StatusServer::onReadable()
{
    UnixSocket socket(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket) {
        if (errno != EAGAIN && errno != ECONNABORTED) {
            m_waitSet.holdOff(); // descriptors or memory have run out; it stays readable
        }
        return;
    }
    ucred credentials{};
    socklen_t size = sizeof credentials;
    const bool isKnown = getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 &&
                         (credentials.uid == geteuid() || credentials.uid == 0);
    if (isKnown) {
        tell(socket);
    }
}

void StatusServer::tell(const host::UnixSocket& socket) const
{
    try {
        const std::string text = statusText(m_source());
        setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &socketBufferBytes, sizeof socketBufferBytes);
        ::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    } catch (const std::bad_alloc&) {
        return; // who has asked sees that there is no answer
    }
}

FetchedStatus fetchStatus(const host::RunDirectory& directory, Nanoseconds patience)
{
    FetchedStatus fetched;
    const host::Deadline until = Clock::get().monotonic() + patience;
    const UnixSocket socket = UnixSocket::make(SOCK_NONBLOCK);
    const sockaddr_un address = host::socketAddress(directory, statusSocketName);
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const bool isNobody = errno == ENOENT || errno == ECONNREFUSED;
        fetched.holder = isNobody ? 0 : -1; // EAGAIN: so many wait that it can only be hanging
        return fetched;
    }
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0) {
        fetched.holder = credentials.pid;
    }
    if (Clock::get().waitDescriptor(socket.get(), POLLIN, until)) {
        std::vector<char> text(greatestStatus);
        const ssize_t length = recv(socket.get(), text.data(), text.size(), MSG_DONTWAIT);
        fetched.status = length > 0 ? parseStatus({text.data(), static_cast<std::size_t>(length)}) : std::nullopt;
    }
    return fetched;
}

} // namespace dorn::gateway
