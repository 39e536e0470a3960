// SPDX-License-Identifier: MIT
/// @file Peer.hpp
/// All that a gateway has to do with one other node.
#pragma once

#include "gateway/DealerWire.hpp"
#include "gateway/Link.hpp"
#include "gateway/NodeInlet.hpp"
#include "gateway/PeerLife.hpp"
#include "gateway/Receivers.hpp"
#include "gateway/Reception.hpp"
#include "gateway/Resolver.hpp"
#include "syscom/UnixEndpoint.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace dorn::gateway {

/// What all other nodes have in common: this gateway. All of it outlives the peers.
struct Surroundings {
    TAaSysComNid own;
    std::uint64_t epoch;
    const KeyPair& keys;
    const GatewayOptions& options;
    const host::CpidStore& store;
    zmq::context_t& context;
    host::WaitSet& waitSet;
    Resolver& resolver;
    QueueRoom& room;
    RefusalCounts& refused;
    std::uint64_t& taken; ///< frames of senders of this node
};

struct Peer {
    /// @param row stays with the caller
    /// @param ticket by which the resolver's findings are known to be this peer's
    Peer(const TableRow& row, std::size_t ticket, const Surroundings& around)
        : wire(around.context, around.waitSet, around.resolver, row, around.keys, ticket),
          link(row, around.own, around.epoch, around.options, life, wire, around.room, host::Clock::get().monotonic()),
          inlet(around.own, row.node, around.store, link, around.refused, around.taken)
    {
        account.node = row.node;
        link.setPiggyback([this] { return reception.confirmation(); }, [this] { reception.noteSaid(); });
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    PeerLife life;
    DealerWire wire;
    Link link;                                    ///< what goes to it
    Reception reception{life};                    ///< what comes from it
    DeliveryAccount account;                      ///< what becomes of that
    std::uint64_t received = 0;                   ///< messages
    RefusalCounts refused;                        ///< of what its gateway has sent
    NodeInlet inlet;                              ///< where senders of this node hand in
    std::unique_ptr<host::UnixEndpoint> endpoint; ///< the inlet's socket
};

} // namespace dorn::gateway
