// SPDX-License-Identifier: MIT
/// @file NodeInlet.hpp
/// Where messages of this node for another node enter the gateway.
#pragma once

#include "gateway/Link.hpp"
#include "gateway/Status.hpp"
#include "port/Transport.hpp"
#include "syscom/CpidStore.hpp"
#include "syscom/Message.hpp"
#include "syscom/SenderCheck.hpp"

namespace dorn::gateway {

/// Checks packets as they are checked between processes of a node, and gives what is good to the link. There is always
/// room: the link drops what is too much.
class NodeInlet final : public host::FrameSink {
public:
    /// All arguments stay with the caller.
    /// @param taken counts what has come, good or not
    NodeInlet(TAaSysComNid own, TAaSysComNid node, const host::CpidStore& store, Link& link, RefusalCounts& refused,
              std::uint64_t& taken)
        : m_own(own), m_node(node), m_store(store), m_link(link), m_refused(refused), m_taken(taken)
    {
    }

    bool hasRoom() const override { return true; }
    void onFrame(std::span<const std::byte> frame, bool isCut, const host::Peer& peer) override;

private:
    const char* whyBad(std::span<const std::byte> frame, bool isCut, const host::Peer& peer, host::FrameHeader& header);
    bool isCredible(TAaSysComSicad sender, const host::Peer& peer);

    TAaSysComNid m_own;
    TAaSysComNid m_node;
    const host::CpidStore& m_store;
    Link& m_link;
    RefusalCounts& m_refused;
    std::uint64_t& m_taken;
    std::uint64_t m_refusedHere = 0; ///< of what was to go to that node
    host::SenderCheck m_senders;
};

} // namespace dorn::gateway
