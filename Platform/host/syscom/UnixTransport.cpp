// SPDX-License-Identifier: MIT
#include "syscom/UnixTransport.hpp"

#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/UnixEndpoint.hpp"
#include "syscom/UnixSocket.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Room for messages on their way; the kernel grants what the system allows.
constexpr int sendBufferBytes = 1 << 20;

EAaSysComStatus whyNotConnected(int error)
{
    switch (error) {
    case ENOENT:
    case ECONNREFUSED:
        return EAaSysComStatus_NoReceiver;
    case EAGAIN:
        return EAaSysComStatus_QueueFull;
    default:
        return EAaSysComStatus_NoResources;
    }
}

constexpr int greatestAttempts = 16;

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
    int send(std::span<const std::byte> frame, Nanoseconds patience) const
    {
        Deadline until = Deadline(0); // reckoned only when there is no room
        for (;;) {
            if (sendAtOnce(frame) >= 0) {
                return 0;
            }
            const int error = errno;
            if (error == EINTR) {
                continue;
            }
            if (error == EAGAIN && until == Deadline(0) && patience > Nanoseconds(0)) {
                until = Clock::get().monotonic() + patience;
            }
            if (error != EAGAIN || !Clock::get().waitDescriptor(m_socket.get(), POLLOUT, until)) {
                return error;
            }
        }
    }

private:
    /// Never waits, so the thread need not be cancelled here: send(2) of the C library would mark it as ready for that
    /// before and after each message.
    long sendAtOnce(std::span<const std::byte> frame) const
    {
        return syscall(SYS_sendto, m_socket.get(), frame.data(), frame.size(), MSG_NOSIGNAL | MSG_DONTWAIT, nullptr, 0);
    }

    UnixSocket m_socket;
};

/// The connection that the calling thread used last for a receiver, so that a stream of messages takes no lock and
/// touches no shared count. Good as long as no connection has been given up since.
struct UnixTransport::Recent {
    std::uint64_t generation = 0;
    Destination receiver = 0;
    std::shared_ptr<Connection> connection;
};

UnixTransport::UnixTransport() : m_directory(PerNode<RunDirectory>::get()), m_generation(newGeneration())
{
    m_directory.makeSubdirectory(socketFolder);
}

/// No other thread sends any more; those that have ended have let go of their connections.
UnixTransport::~UnixTransport()
{
    recents().fill({});
}

EAaSysComStatus UnixTransport::send(TAaSysComCpid receiver, std::span<const std::byte> frame, Nanoseconds patience)
{
    return sendTo(destinationOf(receiver), frame, patience);
}

EAaSysComStatus UnixTransport::sendToNode(TAaSysComNid node, std::span<const std::byte> frame, Nanoseconds patience)
{
    const Destination place = destinationOfNode(node);
    const Destination hungAt = m_hungAt.load(std::memory_order_relaxed);
    const EAaSysComStatus status = sendTo(place, frame, hungAt != 0 ? Nanoseconds(0) : patience);
    if (status == EAaSysComStatus_QueueFull && hungAt == 0) {
        m_hungAt.store(place, std::memory_order_relaxed);
    } else if (status != EAaSysComStatus_QueueFull && hungAt == place) {
        m_hungAt.store(0, std::memory_order_relaxed);
    }
    return status == EAaSysComStatus_NoReceiver ? EAaSysComStatus_NoRoute : status; // no gateway, or none to that node
}

std::string UnixTransport::nameOf(Destination destination)
{
    const bool isCpid = destination <= 0xFFFFU;
    return isCpid ? socketName(static_cast<TAaSysComCpid>(destination)) : nodeSocketName(destination);
}

EAaSysComStatus UnixTransport::sendTo(Destination receiver, std::span<const std::byte> frame, Nanoseconds patience)
{
    // A connection may have outlived its receiver, and a receiver short of descriptors ends new ones at once: the
    // cpid's present holder is looked for again, until there is none.
    for (int attempt = 0; attempt < greatestAttempts; ++attempt) {
        EAaSysComStatus status = EAaSysComStatus_NoReceiver;
        const Connection* const connection = recentConnectionTo(receiver, status);
        if (!connection) {
            recentFor(receiver) = {};
            return status;
        }
        const int error = connection->send(frame, patience);
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

std::array<UnixTransport::Recent, 8>& UnixTransport::recents()
{
    static thread_local std::array<Recent, 8> ofThread;
    return ofThread;
}

UnixTransport::Recent& UnixTransport::recentFor(Destination receiver)
{
    return recents()[receiver % recents().size()];
}

std::uint64_t UnixTransport::newGeneration()
{
    static std::atomic<std::uint64_t> last{0}; // of all transports, as a thread outlives them
    return last.fetch_add(1) + 1;
}

const UnixTransport::Connection* UnixTransport::recentConnectionTo(Destination receiver, EAaSysComStatus& status)
{
    Recent& recent = recentFor(receiver);
    const std::uint64_t generation = m_generation.load(std::memory_order_acquire);
    if (recent.receiver != receiver || recent.generation != generation) {
        recent = {generation, receiver, connectionTo(receiver, status)};
    }
    return recent.connection.get();
}

std::shared_ptr<UnixTransport::Connection> UnixTransport::connectionTo(Destination receiver, EAaSysComStatus& status)
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
    // One that does not wait: where the connections of thousands have not been taken, a further one would.
    UnixSocket socket = UnixSocket::make(SOCK_NONBLOCK);
    const sockaddr_un address = socketAddress(m_directory, nameOf(receiver));
    if (!socket || connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        status = whyNotConnected(errno);
        return nullptr;
    }
    setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &sendBufferBytes, sizeof sendBufferBytes);
    return m_connections[receiver] = std::make_shared<Connection>(std::move(socket));
}

void UnixTransport::forget(Destination receiver, const Connection* connection)
{
    const std::unique_lock lock(m_mutex);
    const auto known = m_connections.find(receiver);
    if (known != m_connections.end() && known->second.get() == connection) {
        m_connections.erase(known);
        m_generation.store(newGeneration(), std::memory_order_release);
    }
}

std::unique_ptr<Endpoint> UnixTransport::open(TAaSysComCpid cpid, WaitSet& waitSet, FrameSink& sink)
{
    std::array<char, 16> label{};
    std::snprintf(label.data(), label.size(), "cpid 0x%04X", static_cast<unsigned>(cpid));
    return UnixEndpoint::open(m_directory, socketName(cpid), label.data(), waitSet, sink);
}

} // namespace dorn::host
