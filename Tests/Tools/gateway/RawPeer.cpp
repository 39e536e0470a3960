// SPDX-License-Identifier: MIT
#include "RawPeer.hpp"

#include <array>
#include <cstring>

namespace dorn::gateway::test {

RawPeer::RawPeer(const TableRow& row, const std::optional<KeyPair>& own)
{
    zmq_socket_monitor(m_socket.handle(), "inproc://events",
                       ZMQ_EVENT_HANDSHAKE_SUCCEEDED | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH |
                           ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL | ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL);
    m_events.connect("inproc://events");
    m_socket.set(zmq::sockopt::linger, 0);
    m_socket.set(zmq::sockopt::sndhwm, 0);
    if (own) {
        zmq_setsockopt(m_socket.handle(), ZMQ_CURVE_SERVERKEY, row.key.bytes().data(), keySize);
        zmq_setsockopt(m_socket.handle(), ZMQ_CURVE_PUBLICKEY, own->publicKey.bytes().data(), keySize);
        zmq_setsockopt(m_socket.handle(), ZMQ_CURVE_SECRETKEY, own->secretKey.bytes().data(), keySize);
    }
    m_socket.connect("tcp://" + row.host + ":" + std::to_string(row.port));
}

bool RawPeer::isLetIn()
{
    m_events.set(zmq::sockopt::rcvtimeo, 20000);
    zmq::message_t event;
    std::uint16_t kind = 0; // first of the event, host byte order
    if (m_events.recv(event) && event.size() >= sizeof kind) {
        std::memcpy(&kind, event.data(), sizeof kind);
    }
    return kind == ZMQ_EVENT_HANDSHAKE_SUCCEEDED;
}

void RawPeer::send(const WireBytes& bytes)
{
    m_socket.send(zmq::message_t(bytes.data(), bytes.size()), zmq::send_flags::none);
}

std::optional<WireBytes> RawPeer::take(std::chrono::milliseconds patience)
{
    m_socket.set(zmq::sockopt::rcvtimeo, static_cast<int>(patience.count()));
    zmq::message_t message;
    if (!m_socket.recv(message)) {
        return std::nullopt;
    }
    return WireBytes(message.data<std::byte>(), message.data<std::byte>() + message.size());
}

std::optional<Welcome> RawPeer::greet(TAaSysComNid from, TAaSysComNid to, std::uint64_t epoch)
{
    send(wireBytes(Greeting{epoch, 1, static_cast<std::uint16_t>(from), static_cast<std::uint16_t>(to)}));
    return takeA<Welcome>();
}

void RawPeer::sendParcel(std::uint64_t session, std::uint64_t number, TAaSysComSicad sender, TAaSysComSicad receiver)
{
    WireBytes records;
    const std::array<std::byte, 4> payload{};
    appendRecord(records, {0x55, sender, receiver, 4}, payload);
    sendRecords(session, number, 1, records);
}

void RawPeer::sendMany(std::uint64_t session, std::uint64_t number, std::uint32_t count, TAaSysComSicad sender,
                       std::span<const TAaSysComSicad> receivers)
{
    WireBytes records;
    for (std::uint32_t index = 0; index < count; ++index) {
        appendRecord(records, {0x55, sender, receivers[index % receivers.size()], 0}, {});
    }
    sendRecords(session, number, count, records);
}

void RawPeer::sendRecords(std::uint64_t session, std::uint64_t number, std::uint32_t count, const WireBytes& records)
{
    Parcel parcel;
    parcel.session = session;
    parcel.number = number;
    parcel.count = count;
    const auto preamble = parcelPreamble(parcel);
    WireBytes bytes(preamble.begin(), preamble.end());
    bytes.insert(bytes.end(), records.begin(), records.end());
    send(bytes);
}

} // namespace dorn::gateway::test
