// SPDX-License-Identifier: MIT
/// @file FrameInlet.hpp
/// Where messages of other processes enter: nothing is believed before it has been checked.
#pragma once

#include "eu/Eu.hpp"
#include "port/Transport.hpp"
#include "syscom/SenderCheck.hpp"

#include <cstdint>

namespace dorn::host {

/// Looks at a packet by itself. @return why it is no message of this version; null when it is one.
/// @param header receives the packet's header as far as it has one
const char* whyNoMessage(std::span<const std::byte> frame, bool isCut, FrameHeader& header);

/// Turns the frames that arrive for one cpid into messages of its EU's queue. A frame that is no message of this
/// version, that is addressed to somebody else or whose sender is not credible is counted, logged and dropped. A sender
/// of another node is credible when the node's gateway has brought the frame. The frames of a pack are looked at one by
/// one.
class FrameInlet final : public FrameSink {
public:
    FrameInlet(TAaSysComCpid cpid, Eu& eu) : m_cpid(cpid), m_eu(eu), m_euId(eu.id.load()) {}

    bool hasRoom() const override { return !m_eu.queue.isPendingFull(); }
    void onFrame(std::span<const std::byte> packet, bool isCut, const Peer& peer) override;

private:
    void take(std::span<const std::byte> frame, bool isCut, const Peer& peer);
    const char* whyBad(std::span<const std::byte> frame, bool isCut, const Peer& peer, FrameHeader& header);
    bool hand(Message* message);
    bool isCredible(TAaSysComSicad sender, const Peer& peer);
    void report(const char* reason, const FrameHeader& header, std::size_t size, const Peer& peer);

    TAaSysComCpid m_cpid;
    Eu& m_eu;
    TAaProEuId m_euId;
    std::uint32_t m_bad = 0;
    SenderCheck m_senders;
};

} // namespace dorn::host
