// SPDX-License-Identifier: MIT
#include "LoopbackPorts.hpp"

#include "port/Descriptor.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace dorn::pair {
namespace {

constexpr unsigned firstPort = 10000;
constexpr unsigned portCount = 20000;

bool isFree(std::uint16_t port)
{
    const host::Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return socket && bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

} // namespace

std::vector<std::uint16_t> freeLoopbackPorts(std::size_t count)
{
    std::vector<std::uint16_t> ports;
    const unsigned begin = static_cast<unsigned>(getpid()) * 8; // two that run at once begin elsewhere
    for (unsigned tried = 0; tried < portCount && ports.size() < count; ++tried) {
        const auto port = static_cast<std::uint16_t>(firstPort + (begin + tried) % portCount);
        if (isFree(port)) {
            ports.push_back(port);
        }
    }
    if (ports.size() < count) {
        throw std::runtime_error("no free TCP ports on this machine");
    }
    return ports;
}

} // namespace dorn::pair
