// SPDX-License-Identifier: MIT
/// @file Message.hpp
/// A message in memory: one allocation with the queues' links, the header that travels, and the payload.
#pragma once

#include "AaSysCom.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace dorn::host {

/// What goes in front of the payload on a connection between processes of a node; host byte order, as both ends are
/// here.
struct FrameHeader {
    static constexpr std::uint32_t magicNumber = 0x6E724F44;
    static constexpr std::uint16_t currentVersion = 1;

    std::uint32_t magic;
    std::uint16_t version;
    std::uint16_t payloadSize;
    std::uint32_t id;
    std::uint32_t sender;
    std::uint32_t receiver;
    std::uint32_t reserved; ///< 0
};
static_assert(sizeof(FrameHeader) == 24);

constexpr std::size_t maxFrameSize = sizeof(FrameHeader) + AA_SYS_COM_MAX_PAYLOAD;

struct Message {
    Message* next;           ///< inbound: the one sent before; pending: the one behind
    Message* previous;       ///< pending: the one in front
    Message* nextOfSameId;   ///< pending and indexed: the next one with this id
    std::uint64_t position;  ///< pending: rank by arrival
    TAaProEuId targetEu;     ///< the EU that held the cpid when the message was sent
    std::uint32_t isIndexed; ///< pending: whether the index of ids knows it
    alignas(8) FrameHeader header;

    /// @return null when there is no memory. The payload is not initialised.
    static Message* create(TAaSysComMsgId id, std::uint16_t payloadSize, TAaSysComSicad sender,
                           TAaSysComSicad receiver);
    static void destroy(Message* message);

    std::byte* payload();
    /// What the message weighs in a queue: one, and one more for every KiB of payload.
    std::int32_t weight() const { return 1 + header.payloadSize / 1024; }
    /// Header and payload as they travel.
    std::span<const std::byte> frame() const;
};

/// Frees a message that a scope owns.
struct MessageDeleter {
    void operator()(Message* message) const { Message::destroy(message); }
};

} // namespace dorn::host
