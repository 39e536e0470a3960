// SPDX-License-Identifier: MIT
#include "gateway/Link.hpp"

#include "AaSysLog.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <sys/random.h>
#include <system_error>

namespace dorn::gateway {
namespace {

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
           LinkWire& wire, Nanoseconds now)
    : m_row(row),
      m_own(own),
      m_ownEpoch(ownEpoch),
      m_options(options),
      m_life(life),
      m_wire(wire),
      m_queue({options.queueMessages, options.queueBytes}),
      m_changed(now),
      m_until(now),
      m_backOff(options.firstBackOff)
{
    m_life.whenEnded([this](Nanoseconds when) { onLifeEnded(when); });
}

void Link::accept(const RecordHeader& header, std::span<const std::byte> payload)
{
    ++m_accepted;
    const std::size_t dropped = m_queue.push(header, payload);
    if (dropped == 0) {
        return;
    }
    m_dropped[DropReason::QueueFull] += dropped;
    if (!m_isOverflowing) {
        m_isOverflowing = true;
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "The queue to node 0x%04X is full (%zu messages, %zu bytes): the oldest are dropped", m_row.node,
                      m_queue.messages(), m_queue.bytes());
    }
}

void Link::flush()
{
    if (m_state != LinkState::Up) {
        return;
    }
    while (m_queue.canSend()) {
        const OutgoingQueue::Packed packed = m_queue.front();
        Parcel parcel;
        parcel.session = m_session;
        parcel.number = packed.number;
        parcel.count = packed.count;
        parcel.confirmation = m_piggyback();
        if (!m_wire.send(parcelPreamble(parcel), packed.records)) {
            return;
        }
        m_queue.sent();
    }
    m_isOverflowing = m_isOverflowing && m_queue.hasUnsent();
}

Nanoseconds Link::deadline() const
{
    return m_state == LinkState::Up ? std::min(m_nextPing, m_until) : m_until;
}

void Link::tick(Nanoseconds now)
{
    if (m_state == LinkState::Up && now >= m_nextPing) {
        ping(now);
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
    enter(LinkState::Resolving, now);
    m_wire.resolve(m_row.host);
}

void Link::onResolved(const std::optional<std::string>& address, Nanoseconds now)
{
    if (m_state != LinkState::Resolving) {
        return; // too late
    }
    if (address) {
        connect(*address, now);
    } else {
        onFault(LinkFault::HostUnknown, now);
    }
}

void Link::connect(const std::string& address, Nanoseconds now)
{
    enter(LinkState::Connecting, now);
    m_attempt = randomId();
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
    if (wasUp) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "The link to node 0x%04X is lost: %s; %zu messages wait",
                      m_row.node, name.c_str(), m_queue.messages());
    } else if (fault != m_reported) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "No link to node 0x%04X (%s port %u): %s; it is tried again",
                      m_row.node, m_row.host.c_str(), static_cast<unsigned>(m_row.port), name.c_str());
    }
    m_reported = fault;
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
    }
}

void Link::onWelcome(const Welcome& welcome, Nanoseconds now)
{
    if (m_state != LinkState::Connecting || welcome.attempt != m_attempt) {
        return;
    }
    if (m_life.meet(welcome.epoch, now) == PeerLife::Meeting::Ended) {
        onFault(LinkFault::Refused, now);
        return;
    }
    std::size_t confirmed = 0;
    m_dropped[DropReason::Unconfirmed] += m_queue.resume(welcome.expected, confirmed);
    m_confirmed += confirmed;
    m_session = welcome.session;
    m_backOff = m_options.firstBackOff;
    m_reported = LinkFault::None;
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
    m_isOverflowing = false;
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
        m_roundTrip = std::max(now - Nanoseconds(static_cast<std::int64_t>(pong.stamp)), Nanoseconds(0));
    }
}

void Link::onRefusal(const Refusal& refusal, Nanoseconds now)
{
    const bool isOfSession = m_state == LinkState::Up && refusal.what == m_session;
    const bool isOfAttempt = m_state == LinkState::Connecting && refusal.what == m_attempt;
    if (isOfSession || isOfAttempt) {
        onFault(refusal.code == RefusalCode::Version ? LinkFault::Version : LinkFault::Refused, now);
    }
}

void Link::ping(Nanoseconds now)
{
    m_nextPing = now + m_options.heartbeat;
    m_wire.send(wireBytes(Ping{m_session, static_cast<std::uint64_t>(now.count())}), {});
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
