// SPDX-License-Identifier: MIT
/// @file MessageQueue.hpp
/// The queue of one EU: any thread puts, the EU takes.
#pragma once

#include "port/Clock.hpp"
#include "syscom/Message.hpp"
#include "syscom/WaitSet.hpp"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>

namespace dorn::host {

/// Senders push onto a lock-free stack whose head also says whether the owner sleeps or the queue is closed; the owner
/// takes the whole stack at once and keeps it, turned round, as its list of pending messages. A sender thus makes a
/// system call only when the owner really sleeps, and holds nothing while it does.
class MessageQueue {
public:
    enum class PushResult { Ok, Full, Closed };

    /// Weight of the messages that may wait to be taken over, see Message::weight(); as much again may be pending with
    /// the owner.
    static constexpr std::int32_t capacity = 65536;

    MessageQueue() = default;
    ~MessageQueue();
    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    // By any thread:

    /// Hands a message over, waiting for room for @p patience at most. It stays the caller's unless the result is Ok.
    PushResult push(Message* message, Nanoseconds patience = Nanoseconds(0));
    /// See AaSysComEuWakeUp(). Safe in a signal handler.
    void requestWakeUp() noexcept;
    /// The descriptors that receive() also waits for; made at the first call. @throws std::system_error
    WaitSet& waitSet();

    // By the owner:

    /// Takes the next message, or with a @p filter the next whose id is in it.
    /// @return null at the deadline and after a wake-up.
    Message* receive(Deadline until, const std::span<const std::uint16_t>* filter);
    /// Puts a message that came from another process behind the pending ones; called while receive() serves
    /// descriptors.
    void appendArrived(Message* message);
    /// Whether so many are pending that arrivals should stay with their senders.
    bool isPendingFull() const { return m_pendingWeight >= capacity; }
    /// Makes the queue usable for the EU @p owner; messages for another are dropped on arrival.
    void open(TAaProEuId owner);
    /// Refuses all further messages and frees what is queued. @return how many were.
    std::size_t close();

private:
    struct Chain {
        Message* first = nullptr;
        Message* last = nullptr;
    };

    PushResult tryPush(Message* message);
    void takeOff(std::int32_t weight);
    bool takeOverInbound();
    void append(Message* message);
    Message* takeFirst();
    Message* takeFirstOf(std::span<const std::uint16_t> ids);
    void indexPending();
    void unlink(Message* message);
    bool spin();
    bool noteSpin(bool hasPaidOff);
    void noteSleep(std::chrono::nanoseconds duration);
    bool sleep(Deadline until);
    bool hasDescriptors() const;
    bool serveLastDescriptor();
    bool serveDescriptors();
    void lookAtDescriptors();
    WaitSet* waitSetIfPossible();
    bool consumeWakeUp();

    // Senders and owner; on a line of its own.
    alignas(64) std::atomic<Message*> m_inbound{nullptr};
    std::atomic<std::int32_t> m_inboundWeight{0};
    std::atomic<std::int32_t> m_blockedSenders{0};
    std::atomic<std::uint32_t> m_roomSignal{0}; ///< changes when there is room again
    std::atomic<bool> m_wakeUpRequested{false};
    std::atomic<WaitSet*> m_waitSet{nullptr};

    // Owner only.
    alignas(64) Message* m_first = nullptr;
    Message* m_last = nullptr;
    Message* m_firstNotIndexed = nullptr;
    std::unordered_map<TAaSysComMsgId, Chain> m_index;
    std::uint64_t m_nextPosition = 0;
    std::size_t m_pendingCount = 0;
    std::int32_t m_pendingWeight = 0;
    std::uint32_t m_takenSinceLook = 0;
    int m_spinCredit = 0;
    std::uint32_t m_sleeps = 0;
    std::chrono::nanoseconds m_spinTime{0}; ///< set by open()
    TAaProEuId m_owner = 0;
};

} // namespace dorn::host
