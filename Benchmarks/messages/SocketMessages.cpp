// SPDX-License-Identifier: MIT
/// @file SocketMessages.cpp
/// Registers bare `AF_UNIX` sockets: a connected pair, each send and each receive one blocking call.
#include "messages/BetweenProcesses.hpp"

#include <cerrno>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using namespace dorn::benchmarks;

/// Room for messages on their way, as the platform asks for it.
constexpr int sendBufferBytes = 1 << 20;

/// @tparam type SOCK_SEQPACKET or SOCK_DGRAM
template <int type>
class SocketEnd {
public:
    explicit SocketEnd(std::size_t size) : m_payload(size)
    {
        int pair[2];
        if (socketpair(AF_UNIX, type, 0, pair) != 0) {
            throw std::system_error(errno, std::generic_category(), "socketpair");
        }
        m_socket = pair[0];
        m_partners = pair[1];
        enlarge();
    }
    /// The partner process inherits its socket; its number is the address.
    SocketEnd(const std::string& address, std::size_t size) : m_payload(size), m_socket(std::stoi(address))
    {
        enlarge();
    }
    ~SocketEnd()
    {
        close(m_socket);
        if (m_partners >= 0) {
            close(m_partners);
        }
    }
    SocketEnd(const SocketEnd&) = delete;
    SocketEnd& operator=(const SocketEnd&) = delete;

    std::string address() const { return std::to_string(m_partners); }

    void send(const Parcel& parcel)
    {
        writeParcel(m_payload.data(), m_payload.size(), parcel);
        require(::send(m_socket, m_payload.data(), m_payload.size(), MSG_NOSIGNAL));
    }
    Parcel receive()
    {
        require(recv(m_socket, m_payload.data(), m_payload.size(), 0));
        return readParcel(m_payload.data());
    }

private:
    void enlarge() const { setsockopt(m_socket, SOL_SOCKET, SO_SNDBUF, &sendBufferBytes, sizeof sendBufferBytes); }
    void require(ssize_t size) const
    {
        if (size != static_cast<ssize_t>(m_payload.size())) {
            throw std::runtime_error("the socket has failed");
        }
    }

    std::vector<std::byte> m_payload;
    int m_socket = -1;
    int m_partners = -1;
};

[[maybe_unused]] const bool isRegistered = registerBetweenProcesses<SocketEnd<SOCK_SEQPACKET>>("seqpacket") &&
                                           registerBetweenProcesses<SocketEnd<SOCK_DGRAM>>("dgram");

} // namespace
