// SPDX-License-Identifier: MIT
/// @file OutgoingQueue.hpp
/// The messages that wait for one other node: packed into parcels, bounded, and kept until they are confirmed.
#pragma once

#include "gateway/Frames.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>

namespace dorn::gateway {

/// A parcel is made up when it is first sent, and then stays as it is: it bears one number, however often it is sent.
/// What has not been sent yet can be dropped for want of room, the oldest first; what has been sent can not, as nobody
/// knows whether it has arrived. So that this does not fill the queue, only so much is sent unconfirmed, by count and
/// by bytes: a quarter of the queue. Where memory runs out the queue stays as it was.
class OutgoingQueue {
public:
    struct Limits {
        std::size_t messages; ///< that wait, sent or not
        std::size_t bytes;    ///< their records'
        std::size_t greatestWindow = std::size_t{4} << 20;
        /// Bytes that may be sent without having been confirmed: a quarter, at most the greatest window.
        std::size_t window() const;
        /// Messages that may be: a quarter, at least one.
        std::size_t windowMessages() const;
        /// Messages of one parcel: a quarter of those, at least one, so that parcels follow each other.
        std::size_t parcelMessages() const;
    };

    /// Messages that went.
    struct Dropped {
        std::size_t unsent = 0;
        std::size_t unconfirmed = 0;
    };

    /// A parcel to send.
    struct Packed {
        std::uint64_t number;
        std::uint32_t count;
        std::span<const std::byte> records; ///< until the queue is changed
    };

    explicit OutgoingQueue(const Limits& limits) : m_limits(limits) {}

    /// Adds a message at the end. @return how many unsent ones were dropped from the front to make room.
    /// @throws std::bad_alloc with nothing added
    std::size_t push(const RecordHeader& header, std::span<const std::byte> payload);

    /// Whether front() has a parcel to send now.
    bool canSend() const;
    /// The next parcel to send, which exists. It stays the next until sent().
    Packed front();
    /// The next parcel has been sent.
    void sent() { ++m_sent; }

    /// All parcels before @p expected have arrived. @return how many messages those were; 0 for a number that has been
    /// confirmed before. A number beyond those sent is not believed.
    std::size_t confirm(std::uint64_t expected);

    /// Whether the other side can expect the parcel @p expected: nobody expects one that comes after the next.
    bool canResume(std::uint64_t expected) const { return expected <= m_next; }
    /// A session begins, and the other side expects the parcel @p expected: those before it have arrived, the others
    /// are to be sent again. It can expect that one.
    /// @param confirmed receives how many messages have arrived
    /// @return how many messages are given up because the other side's number is none of this queue's.
    std::size_t resume(std::uint64_t expected, std::size_t& confirmed);

    /// Drops the oldest message that has not been sent; there is one. @return its bytes
    std::size_t dropOldest();

    /// Drops everything; parcels are numbered from 1 again.
    Dropped clear();

    std::size_t messages() const { return m_messages; }
    std::size_t bytes() const { return m_bytes; }
    bool hasUnsent() const { return !m_unsent.empty(); }
    std::size_t unsentBytes() const { return m_bytes - m_keptBytes; }

private:
    /// Messages that are to be one parcel.
    struct Pack {
        WireBytes records;
        std::size_t begin = 0; ///< of the first that has not been dropped
        std::uint32_t count = 0;
        std::size_t size() const { return records.size() - begin; }
    };

    bool isTooFull() const { return m_messages > m_limits.messages || m_bytes > m_limits.bytes; }
    bool isFull(const Pack& pack, std::size_t size) const;
    Pack& packFor(std::size_t size);
    std::size_t release();
    std::uint64_t firstKept() const { return m_next - m_kept.size(); }

    Limits m_limits;
    std::deque<Pack> m_unsent;
    std::deque<Pack> m_kept;  ///< made parcels, not confirmed; the first of them to be sent is at place m_sent
    std::size_t m_sent = 0;   ///< of m_kept, in this session
    std::uint64_t m_next = 1; ///< number of the parcel that is made next
    std::size_t m_messages = 0;
    std::size_t m_bytes = 0;
    std::size_t m_keptMessages = 0;
    std::size_t m_keptBytes = 0;
};

} // namespace dorn::gateway
