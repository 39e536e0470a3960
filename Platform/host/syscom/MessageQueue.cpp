// SPDX-License-Identifier: MIT
#include "syscom/MessageQueue.hpp"

#include "port/Processor.hpp"

#include <algorithm>
#include <exception>
#include <limits>

namespace dorn::host {
namespace {

// States of an empty inbound stack besides null; never dereferenced.
alignas(Message) std::byte sleepingMark[sizeof(Message)];
alignas(Message) std::byte closedMark[sizeof(Message)];
Message* const sleeping = reinterpret_cast<Message*>(sleepingMark);
Message* const closed = reinterpret_cast<Message*>(closedMark);

/// After so many messages taken without waiting, descriptors get a look.
constexpr std::uint32_t takesBetweenLooks = 64;

/// How long an EU watches its queue before it sleeps: about what it costs to be woken, which an EU learns from how soon
/// it is woken again. A peer that has to be woken itself answers within that time, too.
constexpr std::chrono::nanoseconds shortestSpin{10000};
constexpr std::chrono::nanoseconds longestSpin{60000};
constexpr int spinChecksPerLook = 8;
constexpr int greatestSpinCredit = 8;
constexpr std::uint32_t sleepsBetweenProbes = 32;

/// How long an EU sleeps at a time that has no descriptors to be woken by.
constexpr std::chrono::milliseconds napTime{10};

/// Counts a sender that waits for room, also when its thread is cancelled.
class Blocked {
public:
    explicit Blocked(std::atomic<std::int32_t>& count) : m_count(count) { m_count.fetch_add(1); }
    ~Blocked() { m_count.fetch_sub(1); }
    Blocked(const Blocked&) = delete;
    Blocked& operator=(const Blocked&) = delete;

private:
    std::atomic<std::int32_t>& m_count;
};

/// Has senders ring while it lives, if there was nothing to take when it was made.
class Asleep {
public:
    explicit Asleep(std::atomic<Message*>& inbound) : m_inbound(inbound)
    {
        Message* expected = nullptr;
        m_isAsleep = m_inbound.compare_exchange_strong(expected, sleeping);
    }
    ~Asleep()
    {
        Message* expected = sleeping;
        m_inbound.compare_exchange_strong(expected, nullptr);
    }
    Asleep(const Asleep&) = delete;
    Asleep& operator=(const Asleep&) = delete;
    explicit operator bool() const { return m_isAsleep; }

private:
    std::atomic<Message*>& m_inbound;
    bool m_isAsleep = false;
};

} // namespace

MessageQueue::~MessageQueue()
{
    close();
    delete m_waitSet.load();
}

MessageQueue::PushResult MessageQueue::push(Message* message, Nanoseconds patience)
{
    PushResult result = tryPush(message);
    if (result != PushResult::Full || patience <= Nanoseconds(0)) {
        return result;
    }
    const Deadline until = Clock::get().monotonic() + patience;
    const Blocked blocked(m_blockedSenders);
    for (;;) {
        const std::uint32_t signal = m_roomSignal.load();
        result = tryPush(message);
        if (result != PushResult::Full || Clock::get().monotonic() >= until) {
            return result;
        }
        Clock::get().waitWhile(m_roomSignal, signal, until, false);
    }
}

/// Makes room for messages and tells those who wait for it.
void MessageQueue::takeOff(std::int32_t weight)
{
    m_inboundWeight.fetch_sub(weight);
    if (m_blockedSenders.load() > 0) {
        m_roomSignal.fetch_add(1);
        wakeWaiters(m_roomSignal, std::numeric_limits<int>::max(), false);
    }
}

MessageQueue::PushResult MessageQueue::tryPush(Message* message)
{
    // In one order with takeOff(): either this sees the room, or that sees the blocked sender.
    const std::int32_t weight = message->weight();
    if (m_inboundWeight.fetch_add(weight) >= capacity) {
        m_inboundWeight.fetch_sub(weight, std::memory_order_relaxed);
        return PushResult::Full;
    }
    Message* head = m_inbound.load(std::memory_order_relaxed);
    do {
        if (head == closed) {
            m_inboundWeight.fetch_sub(weight, std::memory_order_relaxed);
            return PushResult::Closed;
        }
        message->next = head == sleeping ? nullptr : head;
    } while (!m_inbound.compare_exchange_weak(head, message, std::memory_order_seq_cst, std::memory_order_relaxed));
    if (head == sleeping) {
        // The set exists: the owner sleeps in it. It lives as long as the queue.
        m_waitSet.load(std::memory_order_acquire)->ring();
    }
    return PushResult::Ok;
}

void MessageQueue::requestWakeUp() noexcept
{
    m_wakeUpRequested.store(true);
    if (WaitSet* const set = m_waitSet.load()) {
        set->ring();
    }
}

bool MessageQueue::consumeWakeUp()
{
    return m_wakeUpRequested.load(std::memory_order_relaxed) && m_wakeUpRequested.exchange(false);
}

WaitSet& MessageQueue::waitSet()
{
    WaitSet* set = m_waitSet.load(std::memory_order_acquire);
    if (!set) {
        auto fresh = std::make_unique<WaitSet>();
        // In one order with requestWakeUp(): either that sees the set, or sleep() sees the request.
        if (m_waitSet.compare_exchange_strong(set, fresh.get())) {
            set = fresh.release();
        }
    }
    return *set;
}

Message* MessageQueue::receive(Deadline until, const std::span<const std::uint16_t>* filter)
{
    for (;;) {
        lookAtDescriptors();
        if (Message* const message = filter ? takeFirstOf(*filter) : takeFirst()) {
            ++m_takenSinceLook;
            return message;
        }
        if (takeOverInbound() || serveLastDescriptor()) {
            continue;
        }
        if (until == Deadline(0)) {
            if (!serveDescriptors()) {
                return nullptr; // a wake-up is left for a receive that waits
            }
            continue;
        }
        if (consumeWakeUp()) {
            return nullptr;
        }
        if (spin()) {
            continue;
        }
        const Message* const lastBefore = m_last;
        if (!sleep(until)) {
            continue;
        }
        const bool isLate = until != noDeadline && Clock::get().monotonic() >= until;
        if (isLate && m_last == lastBefore && !takeOverInbound()) {
            return nullptr;
        }
    }
}

bool MessageQueue::hasDescriptors() const
{
    const WaitSet* const set = m_waitSet.load(std::memory_order_acquire);
    return set && set->hasSources();
}

/// Takes what has come in the meantime where messages came from last. @return whether there was any.
bool MessageQueue::serveLastDescriptor()
{
    if (!hasDescriptors() || isPendingFull()) {
        return false;
    }
    const Message* const lastBefore = m_last;
    waitSet().serveLast();
    ++m_takenSinceLook; // a selective receive may pass over all that come from there
    return m_last != lastBefore;
}

/// Takes what is there at the descriptors now. @return whether messages came.
bool MessageQueue::serveDescriptors()
{
    if (!hasDescriptors() || isPendingFull()) {
        return false;
    }
    const Message* const lastBefore = m_last;
    m_takenSinceLook = 0;
    waitSet().wait(Deadline(0));
    return m_last != lastBefore;
}

/// Gives descriptors and local senders their turns while the one never lets the other's run dry.
void MessageQueue::lookAtDescriptors()
{
    if (m_takenSinceLook >= takesBetweenLooks && hasDescriptors()) {
        takeOverInbound();
        serveDescriptors();
    }
}

/// Sleeps until something may have come. @return false when something was there before.
bool MessageQueue::sleep(Deadline until)
{
    WaitSet* const set = waitSetIfPossible();
    if (!set) {
        Clock::get().waitDescriptor(-1, 0, std::min(until, Clock::get().monotonic() + napTime));
        return true;
    }
    m_takenSinceLook = 0;
    if (isPendingFull()) {
        // A selective receive that has passed over all that may be kept: only time or a wake-up ends it.
        set->waitForRing(until, m_wakeUpRequested);
        return true;
    }
    const Asleep asleep(m_inbound);
    if (!asleep) {
        return false;
    }
    if (!m_wakeUpRequested.load()) {
        const auto begin = std::chrono::steady_clock::now();
        set->wait(until);
        noteSleep(std::chrono::steady_clock::now() - begin);
    }
    return true;
}

void MessageQueue::noteSleep(std::chrono::nanoseconds duration)
{
    m_spinTime = duration <= longestSpin ? std::clamp(2 * duration, m_spinTime, longestSpin)
                                         : std::max(m_spinTime * 7 / 8, shortestSpin);
}

WaitSet* MessageQueue::waitSetIfPossible()
{
    try {
        return &waitSet();
    } catch (const std::exception&) {
        return nullptr; // descriptors or memory have run out; whoever needs them says so
    }
}

/// Watches the queue and the descriptors for a moment. Pays off between EUs that answer each other at once and under a
/// stream of messages; where it does not, it is tried only now and then.
bool MessageQueue::spin()
{
    if (!hasSeveralProcessors() || (m_spinCredit == 0 && ++m_sleeps % sleepsBetweenProbes != 0)) {
        return false;
    }
    WaitSet* const set = hasDescriptors() && !isPendingFull() ? &waitSet() : nullptr;
    const Message* const lastBefore = m_last;
    const auto end = std::chrono::steady_clock::now() + m_spinTime;
    do {
        for (int check = 0; check < spinChecksPerLook; ++check) {
            if (m_inbound.load(std::memory_order_relaxed)) {
                return noteSpin(true);
            }
            relaxProcessor();
        }
        if (set) {
            set->wait(Deadline(0));
        }
        if (m_last != lastBefore) {
            return noteSpin(true);
        }
    } while (std::chrono::steady_clock::now() < end);
    return noteSpin(false);
}

bool MessageQueue::noteSpin(bool hasPaidOff)
{
    m_spinCredit = hasPaidOff ? std::min(m_spinCredit + 2, greatestSpinCredit) : std::max(m_spinCredit - 1, 0);
    return hasPaidOff;
}

bool MessageQueue::takeOverInbound()
{
    if (!m_inbound.load(std::memory_order_relaxed) || isPendingFull()) {
        return false;
    }
    Message* message = m_inbound.exchange(nullptr, std::memory_order_seq_cst);
    Message* reversed = nullptr;
    std::int32_t weight = 0;
    while (message) {
        Message* const next = message->next;
        message->next = reversed;
        reversed = message;
        weight += message->weight();
        message = next;
    }
    takeOff(weight);
    bool hasAny = false;
    while (reversed) {
        Message* const next = reversed->next;
        if (reversed->targetEu == m_owner) {
            append(reversed);
            hasAny = true;
        } else {
            Message::destroy(reversed); // sent to an EU that had this place before and has ended
        }
        reversed = next;
    }
    return hasAny;
}

/// What this process's EUs have sent before the arrival may be what the arrival answers: it goes in front.
void MessageQueue::appendArrived(Message* message)
{
    const Message* const head = m_inbound.load(std::memory_order_acquire);
    if (head && head != sleeping && head != closed) {
        takeOverInbound();
    }
    append(message);
}

void MessageQueue::append(Message* message)
{
    message->next = nullptr;
    message->previous = m_last;
    message->nextOfSameId = nullptr;
    message->isIndexed = 0;
    message->position = m_nextPosition++;
    (m_last ? m_last->next : m_first) = message;
    m_last = message;
    if (!m_firstNotIndexed) {
        m_firstNotIndexed = message;
    }
    ++m_pendingCount;
    m_pendingWeight += message->weight();
}

Message* MessageQueue::takeFirst()
{
    Message* const message = m_first;
    if (message) {
        unlink(message);
    }
    return message;
}

Message* MessageQueue::takeFirstOf(std::span<const std::uint16_t> ids)
{
    takeOverInbound();
    indexPending();
    Message* earliest = nullptr;
    for (const std::uint16_t id : ids) {
        const auto chain = m_index.find(id);
        Message* const first = chain == m_index.end() ? nullptr : chain->second.first;
        if (first && (!earliest || first->position < earliest->position)) {
            earliest = first;
        }
    }
    if (earliest) {
        unlink(earliest);
    }
    return earliest;
}

/// Enters the messages that came since the last selective receive. A filter has 16-bit ids, so greater ones are left
/// out, which also bounds the index.
void MessageQueue::indexPending()
{
    while (Message* const message = m_firstNotIndexed) {
        if (message->header.id <= 0xFFFFU) {
            Chain& chain = m_index[message->header.id];
            (chain.first ? chain.last->nextOfSameId : chain.first) = message;
            chain.last = message;
            message->isIndexed = 1;
        }
        m_firstNotIndexed = message->next;
    }
}

/// Takes a message out of the pending ones. It is the first of its id, as both kinds of receive take the earliest.
void MessageQueue::unlink(Message* message)
{
    if (message->isIndexed) {
        m_index[message->header.id].first = message->nextOfSameId;
    }
    if (m_firstNotIndexed == message) {
        m_firstNotIndexed = message->next;
    }
    (message->previous ? message->previous->next : m_first) = message->next;
    (message->next ? message->next->previous : m_last) = message->previous;
    --m_pendingCount;
    m_pendingWeight -= message->weight();
}

void MessageQueue::open(TAaProEuId owner)
{
    m_owner = owner;
    m_spinTime = shortestSpin;
    m_wakeUpRequested.store(false);
    m_inbound.store(nullptr);
}

std::size_t MessageQueue::close()
{
    Message* message = m_inbound.exchange(closed);
    std::size_t count = m_pendingCount;
    std::int32_t weight = 0;
    for (; message && message != closed && message != sleeping; ++count) {
        Message* const next = message->next;
        weight += message->weight();
        Message::destroy(message);
        message = next;
    }
    takeOff(weight);
    while (Message* const pending = takeFirst()) {
        Message::destroy(pending);
    }
    m_index.clear();
    return count;
}

} // namespace dorn::host
