// SPDX-License-Identifier: MIT
/// @file NngMessages.cpp
/// Registers nng: protocol pair0, inproc between threads and ipc between processes.
#include "messages/BetweenProcesses.hpp"
#include "messages/BetweenThreads.hpp"
#include "messages/NngEnd.hpp"

#include <cstdlib>

namespace {

using namespace dorn::benchmarks;

/// @tparam Place where new addresses lie
template <class Place>
struct Named {
    static std::string listen(nng_socket socket)
    {
        const std::string address = Place::prefix() + std::to_string(++s_count);
        requireNng(nng_listen(socket, address.c_str(), nullptr, 0));
        return address;
    }
    static inline int s_count = 0;
};

struct InProc {
    static std::string prefix() { return "inproc://pair"; }
};

struct Ipc {
    static std::string prefix() { return std::string("ipc://") + std::getenv("DORN_RUN_DIR") + "/nng"; }
};

[[maybe_unused]] const bool isRegistered = registerRoundTripBetweenThreads<NngEnd<Named<InProc>>>("nng") &&
                                           registerRateBetweenThreads<NngEnd<Named<InProc>>>("nng") &&
                                           registerBetweenProcesses<NngEnd<Named<Ipc>>>("nng");

} // namespace
