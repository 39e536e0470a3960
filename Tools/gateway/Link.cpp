// SPDX-License-Identifier: MIT
#include "gateway/Link.hpp"

#include "AaSysLog.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <new>
#include <sys/random.h>
#include <system_error>

namespace dorn::gateway {
namespace {

/// So many pings may be on their way until the first is answered.
constexpr std::size_t pingsRemembered = 16;

bool isNumeric(const std::string& host)
{
    in6_addr address{};
    return inet_pton(AF_INET, host.c_str(), &address) == 1 || inet_pton(AF_INET6, host.c_str(), &address) == 1;
}

} // namespace

std::uint64_t randomId()
{
    std::uint64_t id = 0;
    while (id == 0) {
        if (getrandom(&id, sizeof id, 0) != sizeof id && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "random numbers");
        }
    }
    return id;
}

Link::Link(const TableRow& row, TAaSysComNid own, std::uint64_t ownEpoch, const GatewayOptions& options, PeerLife& life,
           LinkWire& wire, QueueRoom& room, Nanoseconds now)
    : m_row(row),
      m_own(own),
      m_ownEpoch(ownEpoch),
      m_options(options),
      m_life(life),
      m_wire(wire),
      m_room(room),
      m_queue({options.queueMessages, options.queueBytes, options.windowBytes}),
      m_changed(now),
      m_until(now),
      m_backOff(options.firstBackOff),
      m_burst(options.silence)
{
    m_life.whenEnded([this](Nanoseconds when) { onLifeEnded(when); });
    m_room.add(*this);
}

void Link::accept(const RecordHeader& header, std::span<const std::byte> payload)
{
    ++m_accepted;
    try {
        noteDropped(m_queue.push(header, payload));
    } catch (const std::bad_alloc&) {
        ++m_dropped[DropReason::QueueFull]; // without a line, which would need memory too
        return;
    }
    m_room.note(RecordHeader::size + payload.size());
}

/// The queues of all nodes take too much, and this one the most.
std::size_t Link::giveWay()
{
    const std::size_t bytes = m_queue.dropOldest();
    noteDropped(1);
    return bytes;
}

void Link::noteDropped(std::size_t count)
{
    m_dropped[DropReason::QueueFull] += count;
    if (m_burst.note(count)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "The queue to node 0x%04X is full (%zu messages, %zu bytes): the oldest are dropped", m_row.node,
                      m_queue.messages(), m_queue.bytes());
    }
}

/// Drops while something waits are of one burst, however rare: with the link down for hours, too.
void Link::reportEndOfDrops(Nanoseconds now)
{
    if (m_queue.hasUnsent()) {
        return;
    }
    if (const std::optional<std::uint64_t> dropped = m_burst.endAt(now)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "The queue to node 0x%04X has room again: %llu messages were dropped meanwhile", m_row.node,
                      static_cast<unsigned long long>(*dropped));
    }
}

void Link::flush()
{
    if (m_state != LinkState::Up || m_isBlocked) {
        return;
    }
    try {
        sendQueued();
    } catch (const std::bad_alloc&) {
        return; // there may be memory later
    }
}

void Link::sendQueued()
{
    while (m_queue.canSend()) {
        const OutgoingQueue::Packed packed = m_queue.front();
        Parcel parcel;
        parcel.session = m_session;
        parcel.number = packed.number;
        parcel.count = packed.count;
        parcel.confirmation = m_piggyback();
        if (!m_wire.send(parcelPreamble(parcel), packed.records)) {
            m_isBlocked = true;
            return;
        }
        m_said();
        m_queue.sent();
    }
}

Nanoseconds Link::deadline() const
{
    return m_state == LinkState::Up ? std::min(m_nextPing, m_until) : m_until;
}

void Link::tick(Nanoseconds now)
{
    reportEndOfDrops(now);
    if (m_state == LinkState::Up && now >= m_nextPing) {
        ping(now);
        if (now - m_changed >= m_options.silence) {
            settle();
        }
    }
    if (now < m_until) {
        return;
    }
    switch (m_state) {
    case LinkState::Waiting:
        begin(now);
        break;
    case LinkState::Resolving:
        onFault(LinkFault::HostUnknown, now);
        break;
    case LinkState::Connecting:
        onFault(LinkFault::Unreachable, now);
        break;
    case LinkState::Up:
        onFault(LinkFault::Silent, now);
        break;
    }
}

void Link::begin(Nanoseconds now)
{
    if (isNumeric(m_row.host)) {
        connect(m_row.host, now);
        return;
    }
    if (!m_addresses.empty()) {
        connectToNext(now);
        return;
    }
    enter(LinkState::Resolving, now);
    m_wire.resolve(m_row.host);
}

/// What comes too late for its attempt is used in the next one.
void Link::onResolved(std::vector<std::string> addresses, Nanoseconds now)
{
    m_addresses = std::move(addresses);
    if (m_state != LinkState::Resolving) {
        return;
    }
    if (m_addresses.empty()) {
        onFault(LinkFault::HostUnknown, now);
    } else {
        connectToNext(now);
    }
}

void Link::connectToNext(Nanoseconds now)
{
    const std::string address = m_addresses.front();
    m_addresses.erase(m_addresses.begin());
    connect(address, now);
}

void Link::tryNow(Nanoseconds now)
{
    if (m_state == LinkState::Waiting) {
        m_until = std::min(m_until, now + m_options.firstBackOff);
    }
}

void Link::connect(const std::string& address, Nanoseconds now)
{
    enter(LinkState::Connecting, now);
    m_attempt = randomId();
    m_askedAt = m_life.count();
    m_wire.connect(address, m_row.port);
    const Greeting greeting{m_ownEpoch, m_attempt, static_cast<std::uint16_t>(m_own),
                            static_cast<std::uint16_t>(m_row.node)};
    m_wire.send(wireBytes(greeting), {});
}

void Link::enter(LinkState state, Nanoseconds now)
{
    const bool isChange = (state == LinkState::Up) != (m_state == LinkState::Up);
    m_state = state;
    m_changed = isChange ? now : m_changed;
    m_until = now + (state == LinkState::Up ? m_options.silence : m_options.attempt);
}

void Link::onFault(LinkFault fault, Nanoseconds now)
{
    if (m_state == LinkState::Waiting) {
        return;
    }
    const bool wasUp = m_state == LinkState::Up;
    m_wire.close();
    m_session = 0;
    m_attempt = 0;
    m_roundTrip.reset();
    m_pings.clear();
    m_isBlocked = false;
    m_fault = fault;
    enter(LinkState::Waiting, now);
    m_until = now + m_backOff;
    m_backOff = std::min(2 * m_backOff, m_options.greatestBackOff);
    report(fault, wasUp);
}

/// Says it once for each thing that is wrong, not for each attempt.
void Link::report(LinkFault fault, bool wasUp)
{
    const std::string name(nameOf(fault));
    const std::uint32_t bit = 1U << static_cast<unsigned>(fault);
    if (wasUp) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "The link to node 0x%04X is lost: %s; %zu messages wait",
                      m_row.node, name.c_str(), m_queue.messages());
    } else if ((m_reported & bit) == 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "No link to node 0x%04X (%s port %u): %s; it is tried again",
                      m_row.node, m_row.host.c_str(), static_cast<unsigned>(m_row.port), name.c_str());
    }
    m_reported |= bit;
}

/// It has been up for long enough to be no attempt any more.
void Link::settle()
{
    m_backOff = m_options.firstBackOff;
    m_reported = 0;
}

void Link::onMessage(const WireMessage& message, Nanoseconds now)
{
    if (const auto* const welcome = std::get_if<Welcome>(&message)) {
        onWelcome(*welcome, now);
    } else if (const auto* const confirmation = std::get_if<Confirmation>(&message)) {
        onConfirmation(*confirmation);
    } else if (const auto* const pong = std::get_if<Pong>(&message)) {
        onPong(*pong, now);
    } else if (const auto* const refusal = std::get_if<Refusal>(&message)) {
        onRefusal(*refusal, now);
    } else if (std::holds_alternative<OtherVersion>(message)) {
        onFault(LinkFault::Version, now);
    } else {
        onFault(LinkFault::Garbage, now);
    }
    if (m_state == LinkState::Up) {
        m_until = now + m_options.silence;
        m_isBlocked = false;
    }
}

void Link::onWelcome(const Welcome& welcome, Nanoseconds now)
{
    if (m_state != LinkState::Connecting || welcome.attempt != m_attempt) {
        return;
    }
    m_life.meet(welcome.epoch, m_askedAt, now);
    if (m_life.epoch() != welcome.epoch) {
        onFault(LinkFault::Refused, now);
        return;
    }
    if (!m_queue.canResume(welcome.expected)) {
        onFault(LinkFault::Garbage, now);
        return;
    }
    std::size_t confirmed = 0;
    m_dropped[DropReason::Unconfirmed] += m_queue.resume(welcome.expected, confirmed);
    m_confirmed += confirmed;
    m_session = welcome.session;
    m_addresses.clear();
    ++m_ups;
    enter(LinkState::Up, now);
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "The link to node 0x%04X is up; %zu messages wait", m_row.node,
                  m_queue.messages());
    ping(now);
    flush();
}

/// What waits was meant for the life that has ended.
void Link::onLifeEnded(Nanoseconds now)
{
    const OutgoingQueue::Dropped dropped = m_queue.clear();
    m_dropped[DropReason::PeerRestarted] += dropped.unsent;
    m_dropped[DropReason::Unconfirmed] += dropped.unconfirmed;
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                  "Node 0x%04X has been restarted: dropped %zu messages for its life before", m_row.node,
                  dropped.unsent + dropped.unconfirmed);
    if (m_state == LinkState::Up) {
        onFault(LinkFault::Cut, now);
    }
}

void Link::onConfirmation(const Confirmation& confirmation)
{
    if (m_state == LinkState::Up && confirmation.session == m_session) {
        m_confirmed += m_queue.confirm(confirmation.expected);
    }
}

void Link::onPong(const Pong& pong, Nanoseconds now)
{
    if (m_state == LinkState::Up && pong.confirmation.session == m_session) {
        onConfirmation(pong.confirmation);
        const auto ping = std::find_if(m_pings.begin(), m_pings.end(), [&pong](Nanoseconds sent) {
            return static_cast<std::uint64_t>(sent.count()) == pong.stamp;
        });
        if (ping != m_pings.end()) { // or it is none of ours: only what was sent is believed
            m_roundTrip = now - *ping;
            m_pings.erase(m_pings.begin(), ping + 1);
        }
    }
}

namespace {

LinkFault faultOf(RefusalCode code)
{
    switch (code) {
    case RefusalCode::Version:
        return LinkFault::Version;
    case RefusalCode::WrongNode:
        return LinkFault::WrongNode;
    case RefusalCode::NoSession:
        return LinkFault::Refused;
    }
    return LinkFault::Garbage; // none of this version
}

} // namespace

void Link::onRefusal(const Refusal& refusal, Nanoseconds now)
{
    const bool isOfSession = m_state == LinkState::Up && refusal.what == m_session;
    const bool isOfAttempt = m_state == LinkState::Connecting && refusal.what == m_attempt;
    if (isOfSession || isOfAttempt) {
        onFault(faultOf(refusal.code), now);
    }
}

void Link::ping(Nanoseconds now)
{
    m_nextPing = now + m_options.heartbeat;
    m_isBlocked = !m_wire.send(wireBytes(Ping{m_session, static_cast<std::uint64_t>(now.count())}), {});
    m_pings.push_back(now);
    if (m_pings.size() > pingsRemembered) {
        m_pings.pop_front();
    }
}

void Link::describe(LinkStatus& status, Nanoseconds now) const
{
    status.node = m_row.node;
    status.host = m_row.host;
    status.port = m_row.port;
    status.state = m_state;
    status.fault = m_fault;
    status.inState = now - m_changed;
    status.roundTrip = m_roundTrip;
    status.ups = m_ups;
    status.peerEpoch = m_life.epoch();
    status.accepted = m_accepted;
    status.confirmed = m_confirmed;
    status.waiting = m_queue.messages();
    status.waitingBytes = m_queue.bytes();
    status.dropped = m_dropped;
}

} // namespace dorn::gateway
