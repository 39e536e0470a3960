// SPDX-License-Identifier: MIT
#include "syscom/Pack.hpp"

#include <algorithm>
#include <cstring>

namespace dorn::host {

bool isPack(std::span<const std::byte> packet)
{
    PackHeader header{};
    if (packet.size() < sizeof header) {
        return false;
    }
    std::memcpy(&header, packet.data(), sizeof header);
    return header.magic == PackHeader::magicNumber;
}

std::span<const std::byte> framesOf(std::span<const std::byte> pack)
{
    return pack.subspan(sizeof(PackHeader));
}

std::span<const std::byte> takeFrame(std::span<const std::byte>& frames)
{
    FrameHeader header{};
    std::memcpy(&header, frames.data(), std::min(frames.size(), sizeof header));
    const std::size_t size = std::min(frames.size(), sizeof header + header.payloadSize);
    const std::span<const std::byte> frame = frames.first(size);
    frames = frames.subspan(size);
    return frame;
}

Pack::Pack()
{
    m_bytes.reserve(sizeof(PackHeader) + maxFrameSize);
    clear();
}

void Pack::clear()
{
    const PackHeader header{PackHeader::magicNumber, 0};
    m_bytes.resize(sizeof header);
    std::memcpy(m_bytes.data(), &header, sizeof header);
    m_count = 0;
}

bool Pack::add(const FrameHeader& header, std::span<const std::byte> payload)
{
    const std::size_t place = m_bytes.size();
    const std::size_t frameSize = sizeof header + payload.size();
    if (m_count > 0 && place + frameSize > maxFrameSize) {
        return false;
    }
    m_bytes.resize(place + frameSize);
    std::memcpy(m_bytes.data() + place, &header, sizeof header);
    std::copy(payload.begin(), payload.end(), m_bytes.data() + place + sizeof header);
    ++m_count;
    return true;
}

std::span<const std::byte> Pack::packet() const
{
    const std::span<const std::byte> all(m_bytes);
    return m_count == 1 ? framesOf(all) : all;
}

} // namespace dorn::host
