// SPDX-License-Identifier: MIT
/// @file Pattern.hpp
/// Payloads that tell whether they arrived whole, once and in order.
#pragma once

#include "AaSysCom.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>

namespace dorn::host::test {

/// Id of the messages that carry a pattern.
constexpr TAaSysComMsgId patternId = 0x7003;

/// First bytes of a pattern; the rest follows from the sequence number.
struct PatternHead {
    std::uint32_t stream;
    std::uint32_t sequence;
    std::uint32_t size;
};
constexpr std::uint16_t leastPattern = sizeof(PatternHead);

inline std::byte patternByte(std::uint32_t sequence, std::size_t index)
{
    return static_cast<std::byte>(sequence * 31U + static_cast<std::uint32_t>(index) * 7U);
}

/// A message with a pattern of @p size bytes, leastPattern at least.
inline void* makePattern(TAaSysComSicad receiver, std::uint32_t stream, std::uint32_t sequence, std::uint16_t size)
{
    void* const message = AaSysComMsgCreate(patternId, size, receiver);
    auto* const bytes = static_cast<std::byte*>(AaSysComMsgGetPayload(message));
    const PatternHead head{stream, sequence, size};
    std::memcpy(bytes, &head, sizeof head);
    for (std::size_t index = sizeof head; index < size; ++index) {
        bytes[index] = patternByte(sequence, index);
    }
    return message;
}

/// What the patterns that one receiver took were like.
class PatternCheck {
public:
    void take(void* message)
    {
        PatternHead head{};
        const auto* const bytes = static_cast<const std::byte*>(AaSysComMsgGetPayload(message));
        const std::size_t size = AaSysComMsgGetPayloadSize(message);
        if (size < sizeof head) {
            ++m_broken;
            return;
        }
        std::memcpy(&head, bytes, sizeof head);
        bool isWhole = head.size == size;
        for (std::size_t index = sizeof head; index < size; ++index) {
            isWhole = isWhole && bytes[index] == patternByte(head.sequence, index);
        }
        m_broken += isWhole ? 0 : 1;
        std::uint32_t& next = m_next[head.stream];
        m_outOfOrder += head.sequence == next ? 0 : 1;
        next = head.sequence + 1;
        ++m_count;
    }

    std::uint32_t count() const { return m_count; }
    std::uint32_t broken() const { return m_broken; }
    /// Messages that did not follow the one before of their stream: lost, doubled or overtaken.
    std::uint32_t outOfOrder() const { return m_outOfOrder; }

private:
    std::map<std::uint32_t, std::uint32_t> m_next;
    std::uint32_t m_count = 0;
    std::uint32_t m_broken = 0;
    std::uint32_t m_outOfOrder = 0;
};

} // namespace dorn::host::test
