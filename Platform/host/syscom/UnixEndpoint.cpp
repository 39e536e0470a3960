// SPDX-License-Identifier: MIT
#include "syscom/UnixEndpoint.hpp"

#include "AaSysLog.h"
#include "node/RunDirectory.hpp"
#include "port/FilePort.hpp"
#include "syscom/Message.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Packets that one call takes from a connection.
constexpr std::size_t packetsAtOnce = 16;

/// Room to receive into; one byte more than the greatest frame would be cut off by the kernel and reported as such.
/// Only what has been written to becomes memory.
class ReceiveBuffer {
public:
    ReceiveBuffer() : m_bytes(new std::byte[packetsAtOnce * slotSize])
    {
        for (std::size_t index = 0; index < packetsAtOnce; ++index) {
            m_parts[index] = {m_bytes.get() + index * slotSize, maxFrameSize};
            m_packets[index].msg_hdr = {};
            m_packets[index].msg_hdr.msg_iov = &m_parts[index];
            m_packets[index].msg_hdr.msg_iovlen = 1;
        }
    }

    /// @return packets received; 0 when there are none, -1 when the connection has failed.
    int receive(int descriptor)
    {
        const int count = recvmmsg(descriptor, m_packets.data(), packetsAtOnce, MSG_DONTWAIT, nullptr);
        return count < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : count;
    }

    std::span<const std::byte> packet(std::size_t index) const
    {
        return {static_cast<const std::byte*>(m_parts[index].iov_base), m_packets[index].msg_len};
    }
    bool isCut(std::size_t index) const { return (m_packets[index].msg_hdr.msg_flags & MSG_TRUNC) != 0; }

    static ReceiveBuffer& ofThread()
    {
        static thread_local ReceiveBuffer buffer;
        return buffer;
    }

private:
    static constexpr std::size_t slotSize = (maxFrameSize + 4095) / 4096 * 4096;

    std::unique_ptr<std::byte[]> m_bytes;
    std::array<iovec, packetsAtOnce> m_parts;
    std::array<mmsghdr, packetsAtOnce> m_packets;
};

} // namespace

/// What one other process sends.
class UnixEndpoint::Connection final : public WaitSource, public Peer {
public:
    Connection(UnixEndpoint& endpoint, UnixSocket socket, pid_t pid)
        : m_endpoint(endpoint), m_socket(std::move(socket)), m_pid(pid)
    {
    }

    int descriptor() const { return m_socket.get(); }
    pid_t pid() const override { return m_pid; }

    /// A process that has only closed its end is still there. One that waits for its parent to notice is not.
    bool isGone() const override
    {
        const UnixSocket process(static_cast<int>(syscall(SYS_pidfd_open, m_pid, 0)));
        if (!process) {
            return errno == ESRCH || (kill(m_pid, 0) != 0 && errno == ESRCH);
        }
        pollfd entry{process.get(), POLLIN, 0};
        return ::poll(&entry, 1, 0) > 0;
    }

    void onReadable() override
    {
        if (m_endpoint.m_sink.hasRoom() && !takeSome(m_endpoint.m_sink, ReceiveBuffer::ofThread())) {
            close();
        }
    }

    /// Takes what has been handed over, after making sure that nothing can follow. @return whether there was any.
    bool takeRest()
    {
        shutdown(m_socket.get(), SHUT_RD);
        ReceiveBuffer buffer; // of its own, as this may run while the thread's variables are ending
        const bool hasAny = hasMessages();
        while (takeSome(m_endpoint.m_sink, buffer)) { // as much as the kernel keeps, whether or not it is welcome
        }
        return hasAny;
    }

private:
    /// @return false when nothing will follow.
    bool takeSome(FrameSink& sink, ReceiveBuffer& buffer)
    {
        const int count = buffer.receive(m_socket.get());
        int empty = 0; // packets; or the end, which looks the same
        for (int index = 0; index < count; ++index) {
            const auto slot = static_cast<std::size_t>(index);
            if (buffer.packet(slot).empty()) {
                ++empty;
            } else {
                sink.onFrame(buffer.packet(slot), buffer.isCut(slot), *this);
            }
        }
        if (count < 0 || (empty > 0 && hasEnded())) {
            return false;
        }
        for (; empty > 0; --empty) {
            sink.onFrame({}, false, *this);
        }
        return true;
    }

    bool hasMessages() const
    {
        int queued = 0;
        return ioctl(m_socket.get(), FIONREAD, &queued) == 0 && queued > 0;
    }

    bool hasEnded() const
    {
        pollfd entry{m_socket.get(), POLLRDHUP | POLLHUP, 0};
        return ::poll(&entry, 1, 0) > 0 && !hasMessages();
    }

    void close()
    {
        m_endpoint.m_waitSet.remove(m_socket.get());
        std::erase_if(m_endpoint.m_connections, [this](const auto& other) { return other.get() == this; });
    }

    UnixEndpoint& m_endpoint;
    UnixSocket m_socket;
    pid_t m_pid;
};

std::unique_ptr<UnixEndpoint> UnixEndpoint::open(const RunDirectory& directory, const std::string& name,
                                                 const std::string& label, WaitSet& waitSet, FrameSink& sink)
{
    FilePort::get().remove(directory.descriptor(), name.c_str());
    UnixSocket listener = UnixSocket::make();
    const sockaddr_un address = socketAddress(directory, name);
    if (!listener || bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener.get(), SOMAXCONN) != 0) {
        return nullptr;
    }
    const int descriptor = listener.get();
    std::unique_ptr<UnixEndpoint> endpoint(
        new UnixEndpoint(directory, name, label, std::move(listener), waitSet, sink));
    waitSet.add(descriptor, *endpoint);
    return endpoint;
}

UnixEndpoint::UnixEndpoint(const RunDirectory& directory, std::string name, std::string label, UnixSocket listener,
                           WaitSet& waitSet, FrameSink& sink)
    : m_directory(directory),
      m_name(std::move(name)),
      m_label(std::move(label)),
      m_listener(std::move(listener)),
      m_waitSet(waitSet),
      m_sink(sink)
{
}

UnixEndpoint::~UnixEndpoint()
{
    FilePort::get().remove(m_directory.descriptor(), m_name.c_str());
    const std::lock_guard lock(m_waitSet.mutex());
    m_isEnding = true;
    shutdown(m_listener.get(), SHUT_RD); // from here on nobody connects, also who has found the name before
    m_waitSet.remove(m_listener.get());
    try {
        onReadable(); // those who have connected may have sent
        for (const auto& connection : m_connections) {
            connection->takeRest();
        }
    } catch (const std::bad_alloc&) { // nobody can take it then
    }
    for (const auto& connection : m_connections) {
        m_waitSet.remove(connection->descriptor());
    }
}

void UnixEndpoint::onReadable()
{
    for (;;) {
        pollfd entry{m_listener.get(), POLLIN, 0};
        if (::poll(&entry, 1, 0) <= 0) {
            return;
        }
        UnixSocket socket(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket) {
            accept(std::move(socket));
        } else if (errno != EMFILE && errno != ENFILE) {
            return;
        } else if (!turnAway()) {
            m_waitSet.holdOff();
            return;
        }
    }
}

/// Without descriptors a connection cannot be kept, and would be reported as waiting without end: it is taken in place
/// of the spare descriptor and ended, so that its sender learns of it. What it has brought is taken in before. A sender
/// that had not come to sending yet will come again, and is then left the time for it.
/// @return false when another thread has taken the spare descriptor's place.
bool UnixEndpoint::turnAway()
{
    m_spare = UnixSocket(-1);
    UnixSocket socket(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    const bool isTaken = static_cast<bool>(socket);
    ucred credentials{};
    if (isTaken && isCredible(socket, credentials) &&
        !Connection(*this, std::move(socket), credentials.pid).takeRest()) {
        m_waitSet.holdOff();
    }
    socket = UnixSocket(-1);
    m_spare = UnixSocket::make();
    if (isTaken && std::has_single_bit(++m_turnedAway)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Refused a connection to %s: descriptors have run out (%u so far)",
                      m_label.c_str(), m_turnedAway);
    }
    return isTaken;
}

bool UnixEndpoint::isCredible(const UnixSocket& socket, ucred& credentials) const
{
    socklen_t size = sizeof credentials;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) == 0 &&
        (credentials.uid == geteuid() || credentials.uid == 0)) {
        return true;
    }
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "Refused a connection of process %d of user %u to %s",
                  credentials.pid, credentials.uid, m_label.c_str());
    return false;
}

void UnixEndpoint::accept(UnixSocket socket)
{
    ucred credentials{};
    if (!isCredible(socket, credentials)) {
        return;
    }
    Connection& connection =
        *m_connections.emplace_back(std::make_unique<Connection>(*this, std::move(socket), credentials.pid));
    m_waitSet.add(connection.descriptor(), connection);
    if (!m_isEnding) {
        connection.onReadable(); // what was sent before the connection was taken
    }
}

} // namespace dorn::host
