// SPDX-License-Identifier: MIT
/// @file Link.hpp
/// The way to one other node: what waits for it, and the connection on which it is sent, without any input or output.
#pragma once

#include "gateway/DropBurst.hpp"
#include "gateway/Frames.hpp"
#include "gateway/Gateway.hpp"
#include "gateway/OutgoingQueue.hpp"
#include "gateway/PeerLife.hpp"
#include "gateway/QueueRoom.hpp"
#include "gateway/Status.hpp"
#include "gateway/Table.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace dorn::gateway {

/// A connection to the other gateway, as the link sees it.
class LinkWire {
public:
    virtual ~LinkWire() = default;
    /// Looks the host's name up; Link::onResolved() follows, at once or later, even when the link has given it up.
    virtual void resolve(const std::string& host) = 0;
    /// Begins to connect to a numeric address.
    virtual void connect(const std::string& address, std::uint16_t port) = 0;
    /// Ends the connection, if there is one; nothing of it is heard any more.
    virtual void close() = 0;
    /// @return false when it cannot take the message now.
    virtual bool send(std::span<const std::byte> head, std::span<const std::byte> body) = 0;
};

/// States and what moves them:
///
///     Waiting ──back-off over──▶ Resolving ──address──▶ Connecting ──Welcome──▶ Up
///        ▲                           │                      │                    │
///        └────── any fault: close, back-off ◀───────────────┴────────────────────┘
///
/// The back-off begins anew, and faults are logged again, once the link has been up for the silence time.
/// Time is what its callers say it is; deadline() tells when tick() has something to do. One thread.
class Link final : private QueueTenant {
public:
    /// What the sender confirms to the other gateway along with its parcels; see Reception.
    using Piggyback = std::function<Confirmation()>;
    /// Called when that has been sent.
    using Said = std::function<void()>;

    /// @param row the other node; stays with the caller, like @p options, @p life, @p wire and @p room, and outlives
    /// the link, while the life ends with it
    /// @param own node id and epoch of this gateway
    Link(const TableRow& row, TAaSysComNid own, std::uint64_t ownEpoch, const GatewayOptions& options, PeerLife& life,
         LinkWire& wire, QueueRoom& room, Nanoseconds now);

    void setPiggyback(Piggyback piggyback, Said said)
    {
        m_piggyback = std::move(piggyback);
        m_said = std::move(said);
    }

    /// Takes a message of this node for the other. Where memory has run out it is dropped as if the queue were full.
    void accept(const RecordHeader& header, std::span<const std::byte> payload);
    /// Sends what can be sent. What the wire does not take waits until something is heard, or for the next heartbeat.
    void flush();

    Nanoseconds deadline() const;
    void tick(Nanoseconds now);

    // What is heard on the wire:
    /// @param addresses numeric ones, each of which is tried; empty: the name is unknown
    void onResolved(std::vector<std::string> addresses, Nanoseconds now);
    void onMessage(const WireMessage& message, Nanoseconds now);
    void onFault(LinkFault fault, Nanoseconds now);

    /// The other gateway is known to be there: a link that waits is tried soon.
    void tryNow(Nanoseconds now);

    /// The other gateway has confirmed parcels, also along with its own.
    void onConfirmation(const Confirmation& confirmation);

    /// Fills in what it knows.
    void describe(LinkStatus& status, Nanoseconds now) const;
    bool isUp() const { return m_state == LinkState::Up; }
    const OutgoingQueue& queue() const { return m_queue; }

private:
    std::size_t queuedBytes() const override { return m_queue.bytes(); }
    std::size_t droppableBytes() const override { return m_queue.unsentBytes(); }
    std::size_t giveWay() override;
    void noteDropped(std::size_t count);
    void reportEndOfDrops(Nanoseconds now);
    void sendQueued();
    void enter(LinkState state, Nanoseconds now);
    void begin(Nanoseconds now);
    void connect(const std::string& address, Nanoseconds now);
    void connectToNext(Nanoseconds now);
    void onWelcome(const Welcome& welcome, Nanoseconds now);
    void onPong(const Pong& pong, Nanoseconds now);
    void onRefusal(const Refusal& refusal, Nanoseconds now);
    void onLifeEnded(Nanoseconds now);
    void ping(Nanoseconds now);
    void report(LinkFault fault, bool wasUp);
    void settle();

    const TableRow& m_row;
    TAaSysComNid m_own;
    std::uint64_t m_ownEpoch;
    const GatewayOptions& m_options;
    PeerLife& m_life;
    LinkWire& m_wire;
    QueueRoom& m_room;
    Piggyback m_piggyback = [] { return Confirmation{}; };
    Said m_said = [] {};

    OutgoingQueue m_queue;
    LinkState m_state = LinkState::Waiting;
    LinkFault m_fault = LinkFault::None;
    std::uint32_t m_reported = 0; ///< faults that have been logged since the link was up for a while, as bits
    Nanoseconds m_changed;        ///< when it came up or went down
    Nanoseconds m_until;          ///< back-off, or what is awaited must have come by then
    Nanoseconds m_nextPing{0};
    Nanoseconds m_backOff;
    std::uint64_t m_attempt = 0;
    std::uint64_t m_askedAt = 0; ///< count of lives when the attempt began
    std::uint64_t m_session = 0;
    std::optional<Nanoseconds> m_roundTrip;
    std::deque<Nanoseconds> m_pings;      ///< sent in this session, not answered
    std::vector<std::string> m_addresses; ///< of a host's name, that have not been tried
    bool m_isBlocked = false;             ///< the wire did not take the last message
    DropBurst m_burst;

    std::uint64_t m_ups = 0;
    std::uint64_t m_accepted = 0;
    std::uint64_t m_confirmed = 0;
    DropCounts m_dropped;
};

/// A random number that is not 0.
std::uint64_t randomId();

} // namespace dorn::gateway
