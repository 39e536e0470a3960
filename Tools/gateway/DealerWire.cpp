// SPDX-License-Identifier: MIT
#include "gateway/DealerWire.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

namespace dorn::gateway {
namespace {

constexpr int messagesAtOnce = 64;
/// The link begins a new connection long before. Not never: ZeroMQ would then look through the interfaces of the
/// machine for the address whenever a connection has ended, and end the process when it has no descriptor for that.
constexpr int reconnectMilliseconds = 3'600'000;
constexpr int events = ZMQ_EVENT_CLOSED | ZMQ_EVENT_DISCONNECTED | ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL |
                       ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH;

} // namespace

DealerWire::DealerWire(zmq::context_t& context, host::WaitSet& waitSet, Resolver& resolver, const TableRow& row,
                       const KeyPair& keys, std::size_t ticket)
    : m_context(context), m_waitSet(waitSet), m_resolver(resolver), m_row(row), m_keys(keys), m_ticket(ticket)
{
}

void DealerWire::connect(const std::string& address, std::uint16_t port)
{
    close();
    const bool isSix = address.find(':') != std::string::npos;
    try {
        open("tcp://" + (isSix ? "[" + address + "]" : address) + ":" + std::to_string(port));
    } catch (const zmq::error_t&) {
        close();
        m_failure = LinkFault::Unreachable; // descriptors have run out; tried again like any other fault
    }
}

void DealerWire::open(const std::string& endpoint)
{
    m_socket = std::make_unique<ZmqSocket>(m_context, zmq::socket_type::dealer, m_waitSet);
    zmq::socket_t& socket = m_socket->socket();
    socket.set(zmq::sockopt::ipv6, true);
    socket.set(zmq::sockopt::sndhwm, 0); // the queue's window bounds it
    socket.set(zmq::sockopt::rcvhwm, messagesAtOnce);
    socket.set(zmq::sockopt::maxmsgsize, static_cast<std::int64_t>(greatestEncrypted));
    socket.set(zmq::sockopt::reconnect_ivl, reconnectMilliseconds);
    socket.set(zmq::sockopt::handshake_ivl, 0); // the link gives an attempt up
    m_socket->set(ZMQ_CURVE_SERVERKEY, m_row.key.bytes());
    m_socket->set(ZMQ_CURVE_PUBLICKEY, m_keys.publicKey.bytes());
    m_socket->set(ZMQ_CURVE_SECRETKEY, m_keys.secretKey.bytes());
    m_monitor = std::make_unique<ZmqMonitor>(m_context, *m_socket, events, m_waitSet);
    socket.connect(endpoint);
}

void DealerWire::close()
{
    m_failure.reset();
    m_monitor.reset();
    m_socket.reset();
}

bool DealerWire::send(std::span<const std::byte> head, std::span<const std::byte> body)
{
    if (!m_socket) {
        return false;
    }
    zmq::message_t message;
    if (!makeRoom(message, head.size() + body.size())) {
        return false;
    }
    std::memcpy(message.data(), head.data(), head.size());
    if (!body.empty()) {
        std::memcpy(message.data<std::byte>() + head.size(), body.data(), body.size());
    }
    try {
        return m_socket->send(std::move(message));
    } catch (const zmq::error_t&) {
        m_failure = LinkFault::Cut;
        return false;
    }
}

bool DealerWire::isDirty() const
{
    return m_failure || (m_socket && (m_socket->isDirty() || m_monitor->isDirty()));
}

std::optional<LinkFault> DealerWire::nextFault()
{
    if (m_failure) {
        return m_failure;
    }
    if (!m_monitor || !m_monitor->isDirty()) {
        return std::nullopt;
    }
    const ZmqMonitor::Event event = m_monitor->next().value_or(ZmqMonitor::Event{0, 0});
    const int endedBefore = std::exchange(m_endedInHandshake, 0);
    switch (event.kind) {
    case ZMQ_EVENT_CLOSED:
        return LinkFault::Unreachable;
    case ZMQ_EVENT_DISCONNECTED:
        return LinkFault::Cut;
    case ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL:
        // The other gateway ends the connection without a word when it cannot read what is meant for another key. So
        // does one that just comes to its end, but not twice in a row.
        m_endedInHandshake = event.value == EPIPE ? endedBefore + 1 : 0;
        return m_endedInHandshake > 1 ? LinkFault::KeyRefused : LinkFault::Cut;
    case ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL:
    case ZMQ_EVENT_HANDSHAKE_FAILED_AUTH:
        return LinkFault::KeyRefused;
    default:
        m_endedInHandshake = endedBefore;
        return std::nullopt;
    }
}

void DealerWire::serve(Link& link, Nanoseconds now)
{
    std::optional<LinkFault> fault;
    try {
        takeMessages(link, now); // what has come before the end of a connection counts
        fault = nextFault();
    } catch (const zmq::error_t&) {
        fault = LinkFault::Cut;
    }
    if (fault) {
        link.onFault(*fault, now);
    }
}

void DealerWire::takeMessages(Link& link, Nanoseconds now)
{
    zmq::message_t part;
    for (int count = 0; count < messagesAtOnce && m_socket && m_socket->isDirty() && m_socket->receive(part); ++count) {
        if (part.more()) {
            m_socket->skipRest(part);
            link.onFault(LinkFault::Garbage, now);
        } else {
            link.onMessage(readWire({part.data<std::byte>(), part.size()}), now);
        }
    }
}

} // namespace dorn::gateway
