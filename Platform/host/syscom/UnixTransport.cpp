// SPDX-License-Identifier: MIT
#include "syscom/UnixTransport.hpp"

#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/UnixEndpoint.hpp"
#include "syscom/UnixSocket.hpp"

#include <cerrno>
#include <mutex>
#include <poll.h>
#include <sys/socket.h>

namespace dorn::host {
namespace {

/// Room for messages on their way; the kernel grants what the system allows.
constexpr int sendBufferBytes = 1 << 20;

bool isPeerGone(int error)
{
    return error == EPIPE || error == ECONNRESET || error == ENOTCONN || error == ECONNREFUSED;
}

} // namespace

/// The sending end towards one holder of a cpid.
class UnixTransport::Connection {
public:
    explicit Connection(UnixSocket socket) : m_socket(std::move(socket)) {}

    /// @return 0 or the error number; EAGAIN when there was no room in time.
    int send(std::span<const std::byte> frame, Deadline until) const
    {
        for (;;) {
            if (::send(m_socket.get(), frame.data(), frame.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0) {
                return 0;
            }
            const int error = errno;
            if (error == EINTR) {
                continue;
            }
            if (error != EAGAIN || !Clock::get().waitDescriptor(m_socket.get(), POLLOUT, until)) {
                return error;
            }
        }
    }

private:
    UnixSocket m_socket;
};

UnixTransport::UnixTransport() : m_directory(PerNode<RunDirectory>::get())
{
    m_directory.makeSubdirectory(socketFolder);
}

UnixTransport::~UnixTransport() = default;

EAaSysComStatus UnixTransport::send(TAaSysComCpid receiver, std::span<const std::byte> frame, Deadline until)
{
    // A connection may have outlived its receiver; then the cpid's present holder is looked for once.
    for (int attempt = 0; attempt < 2; ++attempt) {
        EAaSysComStatus status = EAaSysComStatus_NoReceiver;
        const std::shared_ptr<Connection> connection = connectionTo(receiver, status);
        if (!connection) {
            return status;
        }
        const int error = connection->send(frame, until);
        if (error == 0) {
            return EAaSysComStatus_Ok;
        }
        if (!isPeerGone(error)) {
            return error == EAGAIN ? EAaSysComStatus_QueueFull : EAaSysComStatus_NoResources;
        }
        forget(receiver, connection);
    }
    return EAaSysComStatus_NoReceiver;
}

std::shared_ptr<UnixTransport::Connection> UnixTransport::connectionTo(TAaSysComCpid receiver, EAaSysComStatus& status)
{
    {
        const std::shared_lock lock(m_mutex);
        if (const auto known = m_connections.find(receiver); known != m_connections.end()) {
            return known->second;
        }
    }
    // One connection per receiver, or two EUs' messages could overtake each other: made under the lock.
    const std::unique_lock lock(m_mutex);
    if (const auto known = m_connections.find(receiver); known != m_connections.end()) {
        return known->second;
    }
    UnixSocket socket = UnixSocket::make();
    const sockaddr_un address = socketAddress(m_directory, receiver);
    if (!socket || connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const bool isNobodyThere = errno == ENOENT || errno == ECONNREFUSED;
        status = isNobodyThere ? EAaSysComStatus_NoReceiver : EAaSysComStatus_NoResources;
        return nullptr;
    }
    setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &sendBufferBytes, sizeof sendBufferBytes);
    return m_connections[receiver] = std::make_shared<Connection>(std::move(socket));
}

void UnixTransport::forget(TAaSysComCpid receiver, const std::shared_ptr<Connection>& connection)
{
    const std::unique_lock lock(m_mutex);
    const auto known = m_connections.find(receiver);
    if (known != m_connections.end() && known->second == connection) {
        m_connections.erase(known);
    }
}

std::unique_ptr<Endpoint> UnixTransport::open(TAaSysComCpid cpid, WaitSet& waitSet, FrameSink& sink)
{
    return UnixEndpoint::open(m_directory, cpid, waitSet, sink);
}

} // namespace dorn::host
