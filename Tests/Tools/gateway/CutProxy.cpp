// SPDX-License-Identifier: MIT
#include "CutProxy.hpp"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace dorn::gateway::test {
namespace {

sockaddr_in addressOf(const std::string& host, std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, host.c_str(), &address.sin_addr);
    return address;
}

host::Descriptor tcpSocket()
{
    host::Descriptor descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int one = 1;
    setsockopt(descriptor.get(), SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    setsockopt(descriptor.get(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    return descriptor;
}

} // namespace

CutProxy::CutProxy(const std::string& host)
    : m_host(host), m_bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_thread([this] { run(); })
{
}

CutProxy::~CutProxy()
{
    m_isEnding.store(true);
    ring();
    m_thread.join();
}

void CutProxy::ring() const
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_bell.get(), &one, sizeof one);
}

std::size_t CutProxy::add(std::uint16_t port, std::uint16_t target)
{
    Route route{tcpSocket(), target};
    const sockaddr_in address = addressOf(m_host, port);
    if (bind(route.listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(route.listener.get(), 64) != 0) {
        throw std::system_error(errno, std::generic_category(), "proxy");
    }
    const std::lock_guard lock(m_mutex);
    m_routes.push_back(std::move(route));
    ring();
    return m_routes.size() - 1;
}

void CutProxy::cut(std::size_t route)
{
    const std::lock_guard lock(m_mutex);
    m_routes[route].mode = Mode::Cut;
    for (Pair& pair : m_pairs) {
        if (pair.route == route) {
            reset(pair);
        }
    }
    ring();
}

void CutProxy::hold(std::size_t route)
{
    const std::lock_guard lock(m_mutex);
    m_routes[route].mode = Mode::Held;
    ring();
}

void CutProxy::restore(std::size_t route)
{
    const std::lock_guard lock(m_mutex);
    m_routes[route].mode = Mode::Open;
    ring();
}

std::uint64_t CutProxy::accepted(std::size_t route) const
{
    const std::lock_guard lock(m_mutex);
    return m_routes[route].accepted;
}

std::uint64_t CutProxy::passed(std::size_t route) const
{
    const std::lock_guard lock(m_mutex);
    return m_routes[route].passed;
}

/// Ends both connections as a network does that is gone: what is on its way is lost.
void CutProxy::reset(Pair& pair)
{
    const linger none{1, 0};
    for (const host::Descriptor& end : pair.ends) {
        setsockopt(end.get(), SOL_SOCKET, SO_LINGER, &none, sizeof none);
    }
    pair.isOver = true;
}

host::Descriptor CutProxy::connectTo(std::uint16_t port) const
{
    host::Descriptor end = tcpSocket();
    const sockaddr_in address = addressOf(m_host, port);
    const int result = connect(end.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return result == 0 || errno == EINPROGRESS ? std::move(end) : host::Descriptor();
}

void CutProxy::acceptAll()
{
    for (std::size_t index = 0; index < m_routes.size(); ++index) {
        const int accepted = accept4(m_routes[index].listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (accepted < 0) {
            continue;
        }
        ++m_routes[index].accepted;
        Pair& pair = m_pairs.emplace_back();
        pair.route = index;
        pair.ends[0] = host::Descriptor(accepted);
        if (m_routes[index].mode != Mode::Cut) {
            pair.ends[1] = connectTo(m_routes[index].target);
        }
        if (!pair.ends[1]) {
            reset(pair);
        }
    }
}

void CutProxy::pump(Pair& pair, std::size_t from)
{
    std::vector<char>& waiting = pair.waiting[from];
    if (waiting.empty()) {
        std::array<char, 65536> buffer;
        const ssize_t size = read(pair.ends[from].get(), buffer.data(), buffer.size());
        if (size == 0 || (size < 0 && errno != EAGAIN)) {
            pair.isOver = true;
            return;
        }
        waiting.assign(buffer.begin(), buffer.begin() + std::max<ssize_t>(size, 0));
    }
    if (waiting.empty()) {
        return;
    }
    const ssize_t size = send(pair.ends[1 - from].get(), waiting.data(), waiting.size(), MSG_NOSIGNAL);
    if (size < 0) {
        pair.isOver = errno != EAGAIN;
        return;
    }
    m_routes[pair.route].passed += static_cast<std::uint64_t>(size);
    waiting.erase(waiting.begin(), waiting.begin() + size);
}

void CutProxy::run()
{
    std::vector<pollfd> entries;
    while (!m_isEnding.load()) {
        {
            const std::lock_guard lock(m_mutex);
            acceptAll();
            for (Pair& pair : m_pairs) {
                for (std::size_t end = 0; end < 2 && !pair.isOver && m_routes[pair.route].mode == Mode::Open; ++end) {
                    pump(pair, end);
                }
            }
            m_pairs.remove_if([](const Pair& pair) { return pair.isOver; });
            entries.assign(1, {m_bell.get(), POLLIN, 0});
            for (const Route& route : m_routes) {
                entries.push_back({route.listener.get(), POLLIN, 0});
            }
            for (const Pair& pair : m_pairs) {
                for (std::size_t end = 0; end < 2 && m_routes[pair.route].mode == Mode::Open; ++end) {
                    const bool canRead = pair.waiting[end].empty();
                    const bool hasToWrite = !pair.waiting[1 - end].empty();
                    entries.push_back({pair.ends[end].get(),
                                       static_cast<short>((canRead ? POLLIN : 0) | (hasToWrite ? POLLOUT : 0)), 0});
                }
            }
        }
        ::poll(entries.data(), entries.size(), -1);
        std::uint64_t rings = 0;
        [[maybe_unused]] const ssize_t drained = read(m_bell.get(), &rings, sizeof rings);
    }
}

} // namespace dorn::gateway::test
