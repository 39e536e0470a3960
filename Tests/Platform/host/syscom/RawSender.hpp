// SPDX-License-Identifier: MIT
/// @file RawSender.hpp
/// A process that speaks to a cpid's socket as it likes.
#pragma once

#include "AaSysCom.h"
#include "syscom/Message.hpp"

#include <cerrno>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace dorn::host::test {

using Bytes = std::vector<std::byte>;

inline FrameHeader goodHeader(TAaSysComSicad receiver, std::uint16_t payloadSize = 0)
{
    return {FrameHeader::magicNumber, FrameHeader::currentVersion, payloadSize, 0x55, 0, receiver, 0};
}

/// The bytes of a frame with @p size bytes behind its header.
inline Bytes frameOf(const FrameHeader& header, std::size_t size = 0)
{
    Bytes bytes(sizeof header + size, std::byte{0x5A});
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

/// A connection to a cpid's socket.
class RawSender {
public:
    /// @throws std::system_error when nobody listens.
    RawSender(const std::string& nodeDirectory, TAaSysComCpid cpid, int flags = 0)
        : m_socket(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::snprintf(address.sun_path, sizeof address.sun_path, "%s/cpid/%04x", nodeDirectory.c_str(),
                      static_cast<unsigned>(cpid));
        if (connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            const int error = errno;
            close(m_socket);
            throw std::system_error(error, std::generic_category(), address.sun_path);
        }
    }
    ~RawSender() { close(m_socket); }
    RawSender(const RawSender&) = delete;
    RawSender& operator=(const RawSender&) = delete;

    bool send(const Bytes& bytes) const
    {
        return ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }
    void sendUnlessFull(const Bytes& bytes) const
    {
        ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }

private:
    int m_socket;
};

} // namespace dorn::host::test
