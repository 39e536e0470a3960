// SPDX-License-Identifier: MIT
/// @file NngMessages.cpp
/// Registers nng: protocol pair0, inproc between threads and ipc between processes.
#include "messages/BetweenProcesses.hpp"
#include "messages/BetweenThreads.hpp"

#include <cstdlib>
#include <nng/nng.h>
#include <nng/protocol/pair0/pair.h>
#include <stdexcept>

namespace {

using namespace dorn::benchmarks;

void require(int result)
{
    if (result != 0) {
        throw std::runtime_error(std::string("nng: ") + nng_strerror(result));
    }
}

struct InProc {
    static std::string newAddress() { return "inproc://pair" + std::to_string(++s_count); }
    static inline int s_count = 0;
};

struct Ipc {
    static std::string newAddress()
    {
        return std::string("ipc://") + std::getenv("DORN_RUN_DIR") + "/nng" + std::to_string(++s_count);
    }
    static inline int s_count = 0;
};

/// @tparam Way InProc or Ipc
template <class Way>
class NngEnd {
public:
    explicit NngEnd(std::size_t size) : m_size(size), m_address(Way::newAddress())
    {
        require(nng_pair0_open(&m_socket));
        require(nng_listen(m_socket, m_address.c_str(), nullptr, 0));
    }
    NngEnd(const std::string& address, std::size_t size) : m_size(size), m_address(address)
    {
        require(nng_pair0_open(&m_socket));
        require(nng_dial(m_socket, m_address.c_str(), nullptr, 0));
    }
    ~NngEnd() { nng_close(m_socket); }
    NngEnd(const NngEnd&) = delete;
    NngEnd& operator=(const NngEnd&) = delete;

    NngEnd partner() const { return {m_address, m_size}; }
    std::string address() const { return m_address; }

    void send(const Parcel& parcel)
    {
        nng_msg* message = nullptr;
        require(nng_msg_alloc(&message, m_size));
        writeParcel(nng_msg_body(message), m_size, parcel);
        require(nng_sendmsg(m_socket, message, 0));
    }
    Parcel receive()
    {
        nng_msg* message = nullptr;
        require(nng_recvmsg(m_socket, &message, 0));
        const Parcel parcel = readParcel(nng_msg_body(message));
        nng_msg_free(message);
        return parcel;
    }

private:
    std::size_t m_size;
    std::string m_address;
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
};

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<NngEnd<InProc>>("nng") &&
                                           registerRateBetweenThreads<NngEnd<InProc>>("nng") &&
                                           registerBetweenProcesses<NngEnd<Ipc>>("nng");

} // namespace
