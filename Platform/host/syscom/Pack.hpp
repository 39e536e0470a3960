// SPDX-License-Identifier: MIT
/// @file Pack.hpp
/// Frames for one receiver that travel as one packet: for the kernel that is hardly more work than one frame.
#pragma once

#include "syscom/Message.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace dorn::host {

/// What a packet of several frames begins with; the frames follow each other without padding.
struct PackHeader {
    static constexpr std::uint32_t magicNumber = 0x6B504F44;

    std::uint32_t magic;
    std::uint32_t reserved; ///< 0
};
static_assert(sizeof(PackHeader) == 8);

/// Whether a packet is several frames rather than one.
bool isPack(std::span<const std::byte> packet);
/// What follows a pack's header.
std::span<const std::byte> framesOf(std::span<const std::byte> pack);
/// Takes the first frame off @p frames, which are not empty: as long as its header says, or all that is left.
std::span<const std::byte> takeFrame(std::span<const std::byte>& frames);

/// Frames on their way into a packet, no longer than the greatest single frame.
class Pack {
public:
    Pack();

    /// @return false when there is no room for it.
    bool add(const FrameHeader& header, std::span<const std::byte> payload);
    std::size_t count() const { return m_count; }
    /// The packet: a lone frame as it is.
    std::span<const std::byte> packet() const;
    void clear();

private:
    std::vector<std::byte> m_bytes;
    std::size_t m_count = 0;
};

} // namespace dorn::host
