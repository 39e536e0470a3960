// SPDX-License-Identifier: MIT
/// @file ZeroMqMessages.cpp
/// Registers ZeroMQ: sockets of type PAIR, inproc between threads and ipc between processes.
#include "messages/BetweenProcesses.hpp"
#include "messages/BetweenThreads.hpp"

#include <cstdlib>
#include <stdexcept>
#include <zmq.h>

namespace {

using namespace dorn::benchmarks;

void require(bool isGood)
{
    if (!isGood) {
        throw std::runtime_error(std::string("ZeroMQ: ") + zmq_strerror(zmq_errno()));
    }
}

void* context()
{
    static void* const instance = zmq_ctx_new();
    return instance;
}

struct InProc {
    static std::string newAddress() { return "inproc://pair" + std::to_string(++s_count); }
    static inline int s_count = 0;
};

struct Ipc {
    static std::string newAddress()
    {
        return std::string("ipc://") + std::getenv("DORN_RUN_DIR") + "/zeromq" + std::to_string(++s_count);
    }
    static inline int s_count = 0;
};

/// @tparam Way InProc or Ipc
template <class Way>
class ZeroMqEnd {
public:
    explicit ZeroMqEnd(std::size_t size) : m_size(size), m_address(Way::newAddress()), m_socket(makeSocket())
    {
        require(zmq_bind(m_socket, m_address.c_str()) == 0);
    }
    ZeroMqEnd(const std::string& address, std::size_t size) : m_size(size), m_address(address), m_socket(makeSocket())
    {
        require(zmq_connect(m_socket, m_address.c_str()) == 0);
    }
    ~ZeroMqEnd() { zmq_close(m_socket); }
    ZeroMqEnd(const ZeroMqEnd&) = delete;
    ZeroMqEnd& operator=(const ZeroMqEnd&) = delete;

    ZeroMqEnd partner() const { return {m_address, m_size}; }
    std::string address() const { return m_address; }

    void send(const Parcel& parcel)
    {
        zmq_msg_t message;
        require(zmq_msg_init_size(&message, m_size) == 0);
        writeParcel(zmq_msg_data(&message), m_size, parcel);
        require(zmq_msg_send(&message, m_socket, 0) >= 0);
    }
    Parcel receive()
    {
        zmq_msg_t message;
        zmq_msg_init(&message);
        require(zmq_msg_recv(&message, m_socket, 0) >= 0);
        const Parcel parcel = readParcel(zmq_msg_data(&message));
        zmq_msg_close(&message);
        return parcel;
    }

private:
    static void* makeSocket()
    {
        void* const socket = zmq_socket(context(), ZMQ_PAIR);
        require(socket != nullptr);
        return socket;
    }

    std::size_t m_size;
    std::string m_address;
    void* m_socket;
};

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<ZeroMqEnd<InProc>>("zeromq") &&
                                           registerRateBetweenThreads<ZeroMqEnd<InProc>>("zeromq") &&
                                           registerBetweenProcesses<ZeroMqEnd<Ipc>>("zeromq");

} // namespace
