// SPDX-License-Identifier: MIT
#include "gateway/Entrance.hpp"

#include "AaSysLog.h"
#include "gateway/Frames.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <vector>

namespace dorn::gateway {
namespace {

constexpr int messagesAtOnce = 64;
/// Messages of services that are delivered before senders of this node, the status and the links have their turn.
constexpr std::size_t recordsAtOnce = 4096;
constexpr int connectionsWaiting = 1024;
constexpr int handshakeMilliseconds = 2000;
/// A connection whose other end does not even answer so many questions of the kernel, a silence apart, is gone.
constexpr int silencesUntilGone = 3;
constexpr int events = ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL | ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL;
constexpr const char* keyCheckDomain = "dorn";

/// Parts of a request for authentication, see ZeroMQ's RFC 27.
enum RequestPart : std::size_t { Version, RequestId, Domain, Address, Identity, Mechanism, ClientKey, PartCount };

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

/// @return false when there is no memory for it.
bool copy(std::span<const std::byte> bytes, zmq::message_t& message)
{
    if (!makeRoom(message, bytes.size())) {
        return false;
    }
    std::copy(bytes.begin(), bytes.end(), message.data<std::byte>());
    return true;
}

std::string textOf(const zmq::message_t& part)
{
    return part.to_string();
}

/// Where a request comes from, as people write it.
std::string addressIn(std::span<const zmq::message_t> request)
{
    constexpr std::string_view mapped = "::ffff:"; // an IPv4 address on a socket for both
    const std::string address = request.size() > Address ? textOf(request[Address]) : "an unknown address";
    return address.starts_with(mapped) ? address.substr(mapped.size()) : address;
}

} // namespace

Entrance::Entrance(zmq::context_t& context, host::WaitSet& waitSet, const Table& table, const TableRow& own,
                   const KeyPair& keys, const GatewayOptions& options, RefusalCounts& refused)
    : m_table(table),
      m_own(own),
      m_refused(refused),
      m_keyCheck(context, zmq::socket_type::rep, waitSet),
      m_socket(context, zmq::socket_type::router, waitSet),
      m_monitor(context, m_socket, events, waitSet)
{
    m_keyCheck.socket().bind("inproc://zeromq.zap.01");
    zmq::socket_t& socket = m_socket.socket();
    socket.set(zmq::sockopt::router_mandatory, true);
    socket.set(zmq::sockopt::rcvhwm, messagesAtOnce);
    socket.set(zmq::sockopt::maxmsgsize, static_cast<std::int64_t>(greatestEncrypted));
    socket.set(zmq::sockopt::backlog, connectionsWaiting);
    socket.set(zmq::sockopt::handshake_ivl, handshakeMilliseconds);
    // Not ZeroMQ's own heartbeats: one that falls due when the connection of a full pipe has failed ends the process.
    const auto silence = static_cast<int>(std::chrono::ceil<std::chrono::seconds>(options.silence).count());
    socket.set(zmq::sockopt::tcp_keepalive, 1);
    socket.set(zmq::sockopt::tcp_keepalive_idle, silence);
    socket.set(zmq::sockopt::tcp_keepalive_intvl, silence);
    socket.set(zmq::sockopt::tcp_keepalive_cnt, silencesUntilGone);
    socket.set(zmq::sockopt::zap_domain, keyCheckDomain);
    socket.set(zmq::sockopt::curve_server, true);
    m_socket.set(ZMQ_CURVE_SECRETKEY, keys.secretKey.bytes());
    listen(own, options);
}

void Entrance::listen(const TableRow& own, const GatewayOptions& options)
{
    const std::string& address = options.listenAddress;
    const std::string place = address.find(':') != std::string::npos ? "[" + address + "]" : address;
    const std::string endpoint = "tcp://" + (place.empty() ? "*" : place) + ":" + std::to_string(own.port);
    try {
        m_socket.socket().set(zmq::sockopt::ipv6, true);
        m_socket.socket().bind(endpoint);
    } catch (const zmq::error_t& error) {
        throw host::EnvironmentError("cannot listen on " + endpoint + ": " + error.what());
    }
}

void Entrance::serve(EntranceSink& sink)
{
    serveKeyCheck();
    for (int count = 0; count < messagesAtOnce && m_monitor.isDirty() && m_monitor.next(); ++count) {
        if (std::has_single_bit(++m_refused[RefusalReason::Handshake])) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                          "A connection to port %u did not complete its handshake (%llu so far)",
                          static_cast<unsigned>(m_own.port),
                          static_cast<unsigned long long>(m_refused[RefusalReason::Handshake]));
        }
    }
    zmq::message_t route;
    std::size_t records = 0;
    for (int count = 0;
         count < messagesAtOnce && records < recordsAtOnce && m_socket.isDirty() && m_socket.receive(route); ++count) {
        records += takeMessage(sink, route);
    }
}

std::size_t Entrance::takeMessage(EntranceSink& sink, zmq::message_t& route)
{
    zmq::message_t body;
    if (!route.more() || !m_socket.receive(body)) {
        return 0;
    }
    // What the key check said about the connection stands in every message.
    TAaSysComNid node = 0;
    if (const char* const user = zmq_msg_gets(body.handle(), "User-Id")) {
        std::from_chars(user, user + std::strlen(user), node, 16);
    }
    if (body.more()) {
        m_socket.skipRest(body);
        body.rebuild(); // none of this protocol
    }
    return sink.onMessage(node, textOf(route), {body.data<std::byte>(), body.size()});
}

void Entrance::answer(const std::string& route, std::span<const std::byte> bytes)
{
    zmq::message_t to;
    zmq::message_t what; // both before either is sent: half a message would go on with the next one's
    if (copy(bytesOf(route), to) && copy(bytes, what) && m_socket.send(std::move(to), true)) {
        m_socket.send(std::move(what));
    }
}

void Entrance::serveKeyCheck()
{
    zmq::message_t part;
    for (int count = 0; count < messagesAtOnce && m_keyCheck.isDirty() && m_keyCheck.receive(part); ++count) {
        std::vector<zmq::message_t> request;
        bool hasMore = part.more();
        request.push_back(std::move(part));
        while (hasMore && m_keyCheck.receive(part)) {
            hasMore = part.more();
            request.push_back(std::move(part));
        }
        decideOn(request);
        part.rebuild();
    }
}

/// The node whose key a request presents; null when it is nobody's, or the own.
const TableRow* Entrance::rowOf(std::span<const zmq::message_t> request) const
{
    KeyBytes bytes{};
    if (request.size() != PartCount || textOf(request[Mechanism]) != "CURVE" ||
        request[ClientKey].size() != bytes.size()) {
        return nullptr;
    }
    std::memcpy(bytes.data(), request[ClientKey].data(), bytes.size());
    const TableRow* const row = m_table.find(PublicKey(bytes));
    return row && row->node != m_own.node ? row : nullptr;
}

void Entrance::decideOn(std::span<const zmq::message_t> request)
{
    const TableRow* const row = rowOf(request);
    std::array<char, 8> node{};
    if (row) {
        std::to_chars(node.data(), node.data() + node.size(), row->node, 16);
    } else if (std::has_single_bit(++m_refused[RefusalReason::UnknownKey])) {
        AaSysLogPrint(
            EAaSysLogSeverityLevel_Warning, "Refused a gateway at %s: its key is none of the table's (%llu so far)",
            addressIn(request).c_str(), static_cast<unsigned long long>(m_refused[RefusalReason::UnknownKey]));
    }
    const std::string requestId = request.size() > RequestId ? textOf(request[RequestId]) : std::string();
    const std::array<std::string_view, 6> answer{"1.0",       requestId, row ? "200" : "400", row ? "" : "unknown key",
                                                 node.data(), ""};
    for (std::size_t index = 0; index < answer.size(); ++index) {
        m_keyCheck.send(bytesOf(answer[index]), index + 1 < answer.size());
    }
}

} // namespace dorn::gateway
