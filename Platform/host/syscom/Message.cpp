// SPDX-License-Identifier: MIT
#include "syscom/Message.hpp"

#include <cstdlib>

namespace dorn::host {
namespace {

// The frame ends where the payload begins, and the payload is aligned for any type.
constexpr std::size_t payloadOffset = sizeof(Message);
static_assert(offsetof(Message, header) + sizeof(FrameHeader) == payloadOffset);
static_assert(payloadOffset % alignof(std::max_align_t) == 0);

} // namespace

Message* Message::create(TAaSysComMsgId id, std::uint16_t payloadSize, TAaSysComSicad sender, TAaSysComSicad receiver)
{
    auto* const message = static_cast<Message*>(std::malloc(payloadOffset + payloadSize));
    if (message) {
        message->next = nullptr;
        message->isIndexed = 0;
        message->header = {FrameHeader::magicNumber, FrameHeader::currentVersion, payloadSize, id, sender, receiver, 0};
    }
    return message;
}

void Message::destroy(Message* message)
{
    std::free(message);
}

std::byte* Message::payload()
{
    return reinterpret_cast<std::byte*>(this) + payloadOffset;
}

std::span<const std::byte> Message::frame() const
{
    return {reinterpret_cast<const std::byte*>(&header), sizeof(FrameHeader) + header.payloadSize};
}

} // namespace dorn::host
