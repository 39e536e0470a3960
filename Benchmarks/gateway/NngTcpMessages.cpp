// SPDX-License-Identifier: MIT
/// @file NngTcpMessages.cpp
/// Registers nng over TCP on loopback, in the clear: protocol pair0.
#include "messages/BetweenProcesses.hpp"
#include "messages/NngEnd.hpp"

#include <arpa/inet.h>

namespace {

using namespace dorn::benchmarks;

struct Tcp {
    static std::string listen(nng_socket socket)
    {
        nng_listener listener = NNG_LISTENER_INITIALIZER;
        requireNng(nng_listen(socket, "tcp://127.0.0.1:0", &listener, 0));
        nng_sockaddr address{};
        requireNng(nng_listener_get_addr(listener, NNG_OPT_LOCADDR, &address));
        return "tcp://127.0.0.1:" + std::to_string(ntohs(address.s_in.sa_port));
    }
};

[[maybe_unused]] const bool isRegistered = registerBetweenProcesses<NngEnd<Tcp>>("nngTcp");

} // namespace
