// SPDX-License-Identifier: MIT
/// @file RawPeer.hpp
/// Somebody who speaks to a gateway's port as he likes.
#pragma once

#include "TestNet.hpp"
#include "gateway/Frames.hpp"

#include <optional>
#include <string>
#include <zmq.hpp>

namespace dorn::gateway::test {

/// A ZeroMQ connection to a gateway.
class RawPeer {
public:
    /// Connects to the gateway of @p row with the keys @p own, which may be anybody's; without keys unencrypted.
    RawPeer(const TableRow& row, const std::optional<KeyPair>& own);

    /// Waits for the end of the handshake. @return whether the gateway let it in
    bool isLetIn();
    void send(const WireBytes& bytes);
    /// The next message. @return nothing when none comes within @p patience.
    std::optional<WireBytes> take(std::chrono::milliseconds patience = std::chrono::seconds(20));
    /// The next message of a kind; others are passed over.
    template <class Kind>
    std::optional<Kind> takeA()
    {
        while (const std::optional<WireBytes> bytes = take()) {
            const WireMessage message = readWire(*bytes);
            if (const auto* const kind = std::get_if<Kind>(&message)) {
                return *kind;
            }
        }
        return std::nullopt;
    }

    /// Begins a session as the node @p from with the node @p to. @return its Welcome
    std::optional<Welcome> greet(TAaSysComNid from, TAaSysComNid to, std::uint64_t epoch = 0xBAD);
    /// Sends one message in a parcel.
    void sendParcel(std::uint64_t session, std::uint64_t number, TAaSysComSicad sender, TAaSysComSicad receiver);

    /// Sends a parcel of @p count empty messages for @p receivers in turn.
    void sendMany(std::uint64_t session, std::uint64_t number, std::uint32_t count, TAaSysComSicad sender,
                  std::span<const TAaSysComSicad> receivers);

private:
    void sendRecords(std::uint64_t session, std::uint64_t number, std::uint32_t count, const WireBytes& records);

    zmq::context_t m_context{1};
    zmq::socket_t m_socket{m_context, zmq::socket_type::dealer};
    zmq::socket_t m_events{m_context, zmq::socket_type::pair};
};

} // namespace dorn::gateway::test
