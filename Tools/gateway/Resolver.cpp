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

std::vector<std::string> systemLookUp(const std::string& host)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &list) != 0) {
        return {};
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, freeaddrinfo);
    std::vector<std::string> addresses;
    for (const addrinfo* one = list; one; one = one->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(one->ai_addr, one->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0) {
            addresses.emplace_back(text.data());
        }
    }
    return addresses;
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

Resolver::Resolver(host::WaitSet& waitSet, LookUp lookUp)
    : m_lookUp(lookUp ? std::move(lookUp) : systemLookUp), m_shared(std::make_shared<Shared>())
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
    if (!m_underWay.insert(ticket).second) {
        return;
    }
    try {
        std::thread([shared = m_shared, lookUp = m_lookUp, ticket, host] {
            shared->add({ticket, lookUp(host)});
        }).detach();
    } catch (const std::system_error&) {
        m_shared->add({ticket, {}}); // no thread to be had now
    }
}

std::vector<Resolver::Found> Resolver::take()
{
    std::vector<Found> found;
    {
        const std::lock_guard lock(m_shared->mutex);
        found = std::exchange(m_shared->found, {});
    }
    for (const Found& one : found) {
        m_underWay.erase(one.ticket);
    }
    return found;
}

} // namespace dorn::gateway
