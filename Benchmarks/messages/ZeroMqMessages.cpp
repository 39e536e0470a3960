// SPDX-License-Identifier: MIT
/// @file ZeroMqMessages.cpp
/// Registers ZeroMQ: sockets of type PAIR, inproc between threads and ipc between processes.
#include "messages/BetweenProcesses.hpp"
#include "messages/BetweenThreads.hpp"
#include "messages/ZeroMqEnd.hpp"

#include <cstdlib>

namespace {

using namespace dorn::benchmarks;

/// @tparam Place where new addresses lie
template <class Place>
struct Named {
    static std::string listen(void* socket)
    {
        const std::string address = Place::prefix() + std::to_string(++s_count);
        requireZeroMq(zmq_bind(socket, address.c_str()) == 0);
        return address;
    }
    static void connect(void* socket, const std::string& address)
    {
        requireZeroMq(zmq_connect(socket, address.c_str()) == 0);
    }
    static inline int s_count = 0;
};

struct InProc {
    static std::string prefix() { return "inproc://pair"; }
};

struct Ipc {
    static std::string prefix() { return std::string("ipc://") + std::getenv("DORN_RUN_DIR") + "/zeromq"; }
};

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<ZeroMqEnd<Named<InProc>>>("zeromq") &&
                                           registerRateBetweenThreads<ZeroMqEnd<Named<InProc>>>("zeromq") &&
                                           registerBetweenProcesses<ZeroMqEnd<Named<Ipc>>>("zeromq");

} // namespace
