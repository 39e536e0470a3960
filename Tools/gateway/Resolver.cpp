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

namespace {

/// None, too, when there is no memory for them: the name is looked up again.
std::vector<std::string> addressesOf(const Resolver::LookUp& lookUp, const std::string& host)
{
    try {
        return lookUp(host);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

struct Resolver::Shared {
    std::mutex mutex;
    host::WaitSet* waitSet; ///< null when nobody wants to know any more
    std::list<Found> found;

    /// Takes the place that was made when the look-up began: there may be no memory now.
    void add(std::list<Found> one)
    {
        const std::lock_guard lock(mutex);
        if (waitSet) {
            found.splice(found.end(), std::move(one));
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
    if (m_underWay.contains(ticket)) {
        return;
    }
    try {
        m_underWay.insert(ticket);
        std::list<Found> one;
        one.push_back({ticket, {}});
        std::thread([shared = m_shared, lookUp = m_lookUp, host, one = std::move(one)]() mutable {
            one.front().addresses = addressesOf(lookUp, host);
            shared->add(std::move(one));
        }).detach();
    } catch (const std::exception&) { // no thread to be had now, or no memory
        m_underWay.erase(ticket);
    }
}

std::list<Resolver::Found> Resolver::take()
{
    std::list<Found> found;
    {
        const std::lock_guard lock(m_shared->mutex);
        found.swap(m_shared->found);
    }
    for (const Found& one : found) {
        m_underWay.erase(one.ticket);
    }
    return found;
}

} // namespace dorn::gateway
