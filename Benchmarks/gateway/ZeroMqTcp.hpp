// SPDX-License-Identifier: MIT
/// @file ZeroMqTcp.hpp
/// ZeroMQ over TCP on loopback, with and without CURVE.
#pragma once

#include "messages/ZeroMqEnd.hpp"

#include <array>
#include <string>

namespace dorn::benchmarks {

/// In the clear.
struct ZeroMqTcp {
    static std::string listen(void* socket)
    {
        requireZeroMq(zmq_bind(socket, "tcp://127.0.0.1:*") == 0);
        std::array<char, 64> endpoint{};
        std::size_t size = endpoint.size();
        requireZeroMq(zmq_getsockopt(socket, ZMQ_LAST_ENDPOINT, endpoint.data(), &size) == 0);
        return endpoint.data();
    }
    static void connect(void* socket, const std::string& address)
    {
        requireZeroMq(zmq_connect(socket, address.c_str()) == 0);
    }
};

/// With CURVE, as the gateways' connections are; the listener's public key stands behind its address.
struct ZeroMqCurve {
    static constexpr std::size_t keyLength = 40;
    using Key = std::array<char, keyLength + 1>;

    static std::string listen(void* socket)
    {
        const int isServer = 1;
        requireZeroMq(zmq_setsockopt(socket, ZMQ_CURVE_SERVER, &isServer, sizeof isServer) == 0);
        const std::string publicKey = giveKeys(socket);
        return ZeroMqTcp::listen(socket) + " " + publicKey;
    }
    static void connect(void* socket, const std::string& address)
    {
        const std::size_t blank = address.find(' ');
        const std::string serverKey = address.substr(blank + 1);
        requireZeroMq(zmq_setsockopt(socket, ZMQ_CURVE_SERVERKEY, serverKey.c_str(), serverKey.size() + 1) == 0);
        giveKeys(socket);
        ZeroMqTcp::connect(socket, address.substr(0, blank));
    }

private:
    /// @return the public one
    static std::string giveKeys(void* socket)
    {
        Key publicKey{};
        Key secretKey{};
        requireZeroMq(zmq_curve_keypair(publicKey.data(), secretKey.data()) == 0);
        requireZeroMq(zmq_setsockopt(socket, ZMQ_CURVE_PUBLICKEY, publicKey.data(), publicKey.size()) == 0);
        requireZeroMq(zmq_setsockopt(socket, ZMQ_CURVE_SECRETKEY, secretKey.data(), secretKey.size()) == 0);
        return publicKey.data();
    }
};

} // namespace dorn::benchmarks
