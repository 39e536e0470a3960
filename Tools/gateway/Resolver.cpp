// SPDX-License-Identifier: MIT
#include "gateway/Resolver.hpp"

#include <array>
#include <netdb.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <utility>

namespace dorn::gateway {
namespace {

std::optional<std::string> lookUp(const std::string& host)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &list) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, freeaddrinfo);
    std::array<char, NI_MAXHOST> text{};
    if (getnameinfo(list->ai_addr, list->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
        return std::nullopt;
    }
    return std::string(text.data());
}

} // namespace

struct Resolver::Shared {
    std::mutex mutex;
    host::WaitSet* waitSet; ///< null when nobody wants to know any more
    std::vector<Found> found;

    void add(Found one)
    {
        const std::lock_guard lock(mutex);
        if (waitSet) {
            found.push_back(std::move(one));
            waitSet->ring();
        }
    }
};

Resolver::Resolver(host::WaitSet& waitSet) : m_shared(std::make_shared<Shared>())
{
    m_shared->waitSet = &waitSet;
}

Resolver::~Resolver()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->waitSet = nullptr;
}

void Resolver::start(std::size_t ticket, const std::string& host)
{
    try {
        std::thread([shared = m_shared, ticket, host] { shared->add({ticket, lookUp(host)}); }).detach();
    } catch (const std::system_error&) {
        m_shared->add({ticket, std::nullopt}); // no thread to be had now
    }
}

std::vector<Resolver::Found> Resolver::take()
{
    const std::lock_guard lock(m_shared->mutex);
    return std::exchange(m_shared->found, {});
}

} // namespace dorn::gateway
