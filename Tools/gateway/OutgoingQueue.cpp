// SPDX-License-Identifier: MIT
#include "gateway/OutgoingQueue.hpp"

#include <algorithm>

namespace dorn::gateway {
std::size_t OutgoingQueue::Limits::window() const
{
    return std::min(greatestWindow, bytes / 4);
}

std::size_t OutgoingQueue::Limits::windowMessages() const
{
    return std::max<std::size_t>(messages / 4, 1);
}

std::size_t OutgoingQueue::Limits::parcelMessages() const
{
    return std::max<std::size_t>(windowMessages() / 4, 1);
}

bool OutgoingQueue::isFull(const Pack& pack, std::size_t size) const
{
    return pack.records.size() + size > parcelTarget || pack.count >= m_limits.parcelMessages();
}

/// The last pack, with memory for @p size bytes more; never much more than a parcel takes.
OutgoingQueue::Pack& OutgoingQueue::packFor(std::size_t size)
{
    if (m_unsent.empty() || isFull(m_unsent.back(), size)) {
        Pack pack;
        pack.records.reserve(size);
        m_unsent.push_back(std::move(pack));
        return m_unsent.back();
    }
    Pack& last = m_unsent.back();
    if (const std::size_t needed = last.records.size() + size; needed > last.records.capacity()) {
        last.records.reserve(std::clamp(2 * last.records.capacity(), needed, parcelTarget));
    }
    return last;
}

std::size_t OutgoingQueue::push(const RecordHeader& header, std::span<const std::byte> payload)
{
    const std::size_t size = RecordHeader::size + payload.size();
    Pack& last = packFor(size);
    appendRecord(last.records, header, payload);
    ++last.count;
    ++m_messages;
    m_bytes += size;

    std::size_t dropped = 0;
    for (; isTooFull() && !m_unsent.empty(); ++dropped) {
        dropOldest();
    }
    return dropped;
}

std::size_t OutgoingQueue::dropOldest()
{
    Pack& first = m_unsent.front();
    std::span<const std::byte> records = std::span<const std::byte>(first.records).subspan(first.begin);
    const std::size_t before = records.size();
    takeRecord(records);
    const std::size_t size = before - records.size();
    first.begin += size;
    --first.count;
    --m_messages;
    m_bytes -= size;
    if (first.count == 0) {
        m_unsent.pop_front();
    }
    return size;
}

bool OutgoingQueue::canSend() const
{
    if (m_sent < m_kept.size()) {
        return true;
    }
    if (m_unsent.empty() || m_kept.empty()) {
        return !m_unsent.empty();
    }
    return m_keptBytes < m_limits.window() && m_keptMessages + m_unsent.front().count <= m_limits.windowMessages();
}

OutgoingQueue::Packed OutgoingQueue::front()
{
    if (m_sent == m_kept.size()) {
        m_kept.push_back(std::move(m_unsent.front()));
        m_unsent.pop_front();
        m_keptMessages += m_kept.back().count;
        m_keptBytes += m_kept.back().size();
        ++m_next;
    }
    const Pack& pack = m_kept[m_sent];
    return {firstKept() + m_sent, pack.count, std::span<const std::byte>(pack.records).subspan(pack.begin)};
}

/// Lets the oldest parcel go. @return its messages
std::size_t OutgoingQueue::release()
{
    const Pack& first = m_kept.front();
    const std::size_t count = first.count;
    m_messages -= count;
    m_bytes -= first.size();
    m_keptMessages -= first.count;
    m_keptBytes -= first.size();
    m_kept.pop_front();
    m_sent -= m_sent > 0 ? 1 : 0;
    return count;
}

std::size_t OutgoingQueue::confirm(std::uint64_t expected)
{
    std::size_t messages = 0;
    if (expected > firstKept() + m_sent) {
        return 0;
    }
    while (firstKept() < expected) {
        messages += release();
    }
    return messages;
}

std::size_t OutgoingQueue::resume(std::uint64_t expected, std::size_t& confirmed)
{
    confirmed = 0;
    std::size_t givenUp = 0;
    if (expected < firstKept()) {
        while (!m_kept.empty()) {
            givenUp += release();
        }
        m_next = expected;
    }
    while (firstKept() < expected) {
        confirmed += release();
    }
    m_sent = 0;
    return givenUp;
}

OutgoingQueue::Dropped OutgoingQueue::clear()
{
    Dropped dropped;
    while (!m_kept.empty()) {
        dropped.unconfirmed += release();
    }
    dropped.unsent = m_messages;
    m_unsent.clear();
    m_messages = 0;
    m_bytes = 0;
    m_sent = 0;
    m_next = 1;
    return dropped;
}

} // namespace dorn::gateway
