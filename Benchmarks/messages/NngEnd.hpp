// SPDX-License-Identifier: MIT
/// @file NngEnd.hpp
/// An end that is an nng socket of protocol pair0.
#pragma once

#include "messages/Traffic.hpp"

#include <cstddef>
#include <nng/nng.h>
#include <nng/protocol/pair0/pair.h>
#include <stdexcept>
#include <string>

namespace dorn::benchmarks {

inline void requireNng(int result)
{
    if (result != 0) {
        throw std::runtime_error(std::string("nng: ") + nng_strerror(result));
    }
}

/// @tparam Way how sockets find each other: `std::string listen(nng_socket socket)` gives the address to dial
template <class Way>
class NngEnd {
public:
    explicit NngEnd(std::size_t size) : m_size(size)
    {
        requireNng(nng_pair0_open(&m_socket));
        m_address = Way::listen(m_socket);
    }
    NngEnd(const std::string& address, std::size_t size) : m_size(size), m_address(address)
    {
        requireNng(nng_pair0_open(&m_socket));
        requireNng(nng_dial(m_socket, m_address.c_str(), nullptr, 0));
    }
    ~NngEnd() { nng_close(m_socket); }
    NngEnd(const NngEnd&) = delete;
    NngEnd& operator=(const NngEnd&) = delete;

    NngEnd partner() const { return {m_address, m_size}; }
    std::string address() const { return m_address; }

    void send(const Parcel& parcel)
    {
        nng_msg* message = nullptr;
        requireNng(nng_msg_alloc(&message, m_size));
        writeParcel(nng_msg_body(message), m_size, parcel);
        requireNng(nng_sendmsg(m_socket, message, 0));
    }
    Parcel receive()
    {
        nng_msg* message = nullptr;
        requireNng(nng_recvmsg(m_socket, &message, 0));
        const Parcel parcel = readParcel(nng_msg_body(message));
        nng_msg_free(message);
        return parcel;
    }

private:
    std::size_t m_size;
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    std::string m_address;
};

} // namespace dorn::benchmarks
