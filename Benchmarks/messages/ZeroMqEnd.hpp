// SPDX-License-Identifier: MIT
/// @file ZeroMqEnd.hpp
/// An end that is a ZeroMQ socket of type PAIR.
#pragma once

#include "messages/Traffic.hpp"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <zmq.h>

namespace dorn::benchmarks {

inline void requireZeroMq(bool isGood)
{
    if (!isGood) {
        throw std::runtime_error(std::string("ZeroMQ: ") + zmq_strerror(zmq_errno()));
    }
}

inline void* zeroMqContext()
{
    static void* const instance = zmq_ctx_new();
    return instance;
}

/// @tparam Way how sockets find each other: `std::string listen(void* socket)` gives the address that
/// `void connect(void* socket, const std::string& address)` is called with
template <class Way>
class ZeroMqEnd {
public:
    explicit ZeroMqEnd(std::size_t size) : m_size(size), m_socket(makeSocket()), m_address(Way::listen(m_socket)) {}
    ZeroMqEnd(const std::string& address, std::size_t size) : m_size(size), m_socket(makeSocket()), m_address(address)
    {
        Way::connect(m_socket, m_address);
    }
    ~ZeroMqEnd() { zmq_close(m_socket); }
    ZeroMqEnd(const ZeroMqEnd&) = delete;
    ZeroMqEnd& operator=(const ZeroMqEnd&) = delete;

    ZeroMqEnd partner() const { return {m_address, m_size}; }
    std::string address() const { return m_address; }

    void send(const Parcel& parcel)
    {
        zmq_msg_t message;
        requireZeroMq(zmq_msg_init_size(&message, m_size) == 0);
        writeParcel(zmq_msg_data(&message), m_size, parcel);
        requireZeroMq(zmq_msg_send(&message, m_socket, 0) >= 0);
    }
    Parcel receive()
    {
        zmq_msg_t message;
        zmq_msg_init(&message);
        requireZeroMq(zmq_msg_recv(&message, m_socket, 0) >= 0);
        const Parcel parcel = readParcel(zmq_msg_data(&message));
        zmq_msg_close(&message);
        return parcel;
    }

private:
    static void* makeSocket()
    {
        void* const socket = zmq_socket(zeroMqContext(), ZMQ_PAIR);
        requireZeroMq(socket != nullptr);
        return socket;
    }

    std::size_t m_size;
    void* m_socket;
    std::string m_address;
};

} // namespace dorn::benchmarks
