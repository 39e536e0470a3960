// SPDX-License-Identifier: MIT
/// @file TcpMessages.cpp
/// Registers bare TCP on loopback: messages of a size that both ends know, each sent by one blocking call, without
/// delay.
#include "messages/BetweenProcesses.hpp"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using namespace dorn::benchmarks;

void require(bool isGood, const char* what)
{
    if (!isGood) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

class TcpEnd {
public:
    /// Listens; the partner is awaited with its first message.
    explicit TcpEnd(std::size_t size) : m_payload(size), m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_in address = loopback(0);
        require(bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "bind");
        require(listen(m_listener, 1) == 0, "listen");
    }
    TcpEnd(const std::string& address, std::size_t size)
        : m_payload(size), m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_in listener = loopback(static_cast<std::uint16_t>(std::stoul(address)));
        require(connect(m_socket, reinterpret_cast<const sockaddr*>(&listener), sizeof listener) == 0, "connect");
        sendAtOnce();
    }
    ~TcpEnd()
    {
        for (const int descriptor : {m_socket, m_listener}) {
            if (descriptor >= 0) {
                close(descriptor);
            }
        }
    }
    TcpEnd(const TcpEnd&) = delete;
    TcpEnd& operator=(const TcpEnd&) = delete;

    std::string address() const
    {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        require(getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) == 0, "getsockname");
        return std::to_string(ntohs(address.sin_port));
    }

    void send(const Parcel& parcel)
    {
        writeParcel(m_payload.data(), m_payload.size(), parcel);
        for (std::size_t sent = 0; sent < m_payload.size();) {
            const ssize_t count = ::send(m_socket, m_payload.data() + sent, m_payload.size() - sent, MSG_NOSIGNAL);
            require(count > 0, "send");
            sent += static_cast<std::size_t>(count);
        }
    }
    Parcel receive()
    {
        if (m_socket < 0) {
            m_socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
            require(m_socket >= 0, "accept");
            sendAtOnce();
        }
        const ssize_t count = recv(m_socket, m_payload.data(), m_payload.size(), MSG_WAITALL);
        require(count == static_cast<ssize_t>(m_payload.size()), "recv");
        return readParcel(m_payload.data());
    }

private:
    void sendAtOnce() const
    {
        const int isAtOnce = 1;
        require(setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &isAtOnce, sizeof isAtOnce) == 0, "TCP_NODELAY");
    }

    std::vector<std::byte> m_payload;
    int m_listener = -1;
    int m_socket = -1;
};

[[maybe_unused]] const bool isRegistered = registerBetweenProcesses<TcpEnd>("tcp");

} // namespace
