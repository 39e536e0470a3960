// SPDX-License-Identifier: MIT
#include "gateway/ZmqSocket.hpp"

#include <atomic>
#include <cerrno>
#include <cstring>

namespace dorn::gateway {

ZmqSocket::ZmqSocket(zmq::context_t& context, zmq::socket_type type, host::WaitSet& waitSet)
    : m_waitSet(waitSet), m_socket(context, type), m_descriptor(m_socket.get(zmq::sockopt::fd))
{
    m_socket.set(zmq::sockopt::linger, 0);
    m_waitSet.add(m_descriptor, *this);
}

ZmqSocket::~ZmqSocket()
{
    const std::lock_guard lock(m_waitSet.mutex());
    m_waitSet.remove(m_descriptor);
}

void ZmqSocket::set(int option, std::span<const std::uint8_t> bytes)
{
    if (zmq_setsockopt(m_socket.handle(), option, bytes.data(), bytes.size()) != 0) {
        throw zmq::error_t();
    }
}

namespace {

/// Does it again when a signal came in between: half a message sent would go on with the next one's.
template <class Call>
auto uninterrupted(const Call& call)
{
    for (;;) {
        try {
            return call();
        } catch (const zmq::error_t& error) {
            if (error.num() != EINTR) {
                throw;
            }
        }
    }
}

} // namespace

bool ZmqSocket::receive(zmq::message_t& part)
{
    m_isDirty = uninterrupted([&] { return m_socket.recv(part, zmq::recv_flags::dontwait).has_value(); });
    return m_isDirty;
}

void ZmqSocket::skipRest(const zmq::message_t& part)
{
    zmq::message_t rest;
    for (bool hasMore = part.more(); hasMore && receive(rest);) {
        hasMore = rest.more();
    }
}

bool ZmqSocket::send(std::span<const std::byte> bytes, bool hasMore)
{
    return send(zmq::message_t(bytes.data(), bytes.size()), hasMore);
}

bool ZmqSocket::send(zmq::message_t message, bool hasMore)
{
    m_isDirty = true;
    const auto flags = zmq::send_flags::dontwait | (hasMore ? zmq::send_flags::sndmore : zmq::send_flags::none);
    try {
        return uninterrupted([&] { return m_socket.send(message, flags).has_value(); });
    } catch (const zmq::error_t& error) {
        if (error.num() == EHOSTUNREACH) {
            return false; // whom it was for has gone
        }
        throw;
    }
}

bool makeRoom(zmq::message_t& message, std::size_t size)
{
    if (zmq_msg_init_size(message.handle(), size) == 0) {
        return true;
    }
    zmq_msg_init(message.handle()); // what has failed halfway cannot be closed
    return false;
}

namespace {

std::string newMonitorAddress()
{
    static std::atomic<std::uint64_t> count{0};
    return "inproc://monitor-" + std::to_string(count.fetch_add(1));
}

void watchEvents(ZmqSocket& watched, const std::string& address, int events)
{
    if (zmq_socket_monitor(watched.socket().handle(), address.c_str(), events) != 0) {
        throw zmq::error_t();
    }
}

} // namespace

ZmqMonitor::ZmqMonitor(zmq::context_t& context, ZmqSocket& watched, int events, host::WaitSet& waitSet)
    : m_watched(watched), m_pair(context, zmq::socket_type::pair, waitSet)
{
    const std::string address = newMonitorAddress();
    watchEvents(watched, address, events);
    m_pair.socket().connect(address);
}

/// ZeroMQ's thread waits for room when events have filled the pair, and holds what their end needs: without room there
/// would be no end.
ZmqMonitor::~ZmqMonitor()
{
    try {
        while (next()) {
        }
    } catch (const zmq::error_t&) {
        // The pair has failed: there is nothing to be had from it.
    }
    zmq_socket_monitor(m_watched.socket().handle(), nullptr, 0);
}

std::optional<ZmqMonitor::Event> ZmqMonitor::next()
{
    zmq::message_t part;
    if (!m_pair.receive(part)) {
        return std::nullopt;
    }
    std::uint16_t kind = 0; // the first part, host byte order: kind and value
    std::uint32_t value = 0;
    if (part.size() >= sizeof kind + sizeof value) {
        std::memcpy(&kind, part.data(), sizeof kind);
        std::memcpy(&value, part.data<std::byte>() + sizeof kind, sizeof value);
    }
    m_pair.skipRest(part);
    return Event{kind, static_cast<int>(value)};
}

} // namespace dorn::gateway
