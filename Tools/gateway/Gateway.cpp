// SPDX-License-Identifier: MIT
#include "gateway/Gateway.hpp"

#include "AaSysLog.h"
#include "gateway/Entrance.hpp"
#include "gateway/Frames.hpp"
#include "gateway/OpenFiles.hpp"
#include "gateway/Peer.hpp"
#include "gateway/PlaceWatch.hpp"
#include "gateway/StatusServer.hpp"
#include "syscom/CpidStore.hpp"
#include "syscom/Node.hpp"
#include "syscom/UnixSocket.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <system_error>
#include <unistd.h>
#include <unordered_map>
#include <vector>

namespace dorn::gateway {
namespace {

using host::Clock;

/// What a sender's connection brings in a row is taken in so many steps before it is sent on.
constexpr int inletStepsAtOnce = 4;
/// So many at once are a stream: less than an endpoint takes from a connection in one step.
constexpr std::uint64_t framesInAStream = 8;

/// ZeroMQ's for a link: the connection and its events, while those of the attempt before may still be ending.
constexpr int socketsPerNode = 2 * 3;

std::string nodeName(TAaSysComNid node)
{
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "0x%04X", node);
    return name.data();
}

/// What is in flight cannot be dropped: all of it together is not to fill the room that all queues share.
GatewayOptions withShares(GatewayOptions options, std::size_t nodes)
{
    const std::size_t share = options.allQueuesBytes / 2 / std::max<std::size_t>(nodes, 1);
    options.windowBytes = std::min(options.windowBytes, std::max(share, parcelTarget));
    return options;
}

const TableRow& ownRow(const host::RunDirectory& directory, const Table& table, const KeyPair& keys)
{
    const TAaSysComNid own = host::idInAddresses(directory.nodeId());
    const TableRow* const row = table.find(own);
    if (!row) {
        throw host::EnvironmentError("the table has no row for this node, " + nodeName(own));
    }
    if (!(row->key == keys.publicKey)) {
        throw host::EnvironmentError("the table has another public key for this node, " + nodeName(row->node) +
                                     ", than the one that belongs to its secret key: " + keys.publicKey.text());
    }
    return *row;
}

/// ZeroMQ's usual number is too low for the greatest table.
int greatestSockets(std::size_t nodes)
{
    return ZMQ_MAX_SOCKETS_DFLT + static_cast<int>(nodes) * socketsPerNode;
}

} // namespace

class Gateway::Loop final : private EntranceSink {
public:
    Loop(const host::RunDirectory& directory, const Table& table, const KeyPair& keys, const GatewayOptions& options);
    ~Loop() override;

    void run();
    void stop() noexcept
    {
        m_isStopping.store(true);
        m_waitSet.ring();
    }

private:
    void addPeer(const host::RunDirectory& directory, const TableRow& row);
    void step();
    void lookAtPlace();
    void takeMoreFromInlets();
    void serveWires();
    void takeResolved();
    void confirmWhereDue();
    void flush();
    bool isAnythingDirty() const;
    Nanoseconds deadline() const;
    GatewayStatus status() const;

    template <class Work>
    void within(Peer& peer, const Work& work);
    std::size_t onMessage(TAaSysComNid node, const std::string& route, std::span<const std::byte> bytes) override;
    void onMessage(Peer& peer, const WireMessage& message, const std::string& route);
    void onGreeting(Peer& peer, const Greeting& greeting, const std::string& route);
    void onParcel(Peer& peer, const Parcel& parcel, const std::string& route);
    void onPing(Peer& peer, const Ping& ping, const std::string& route);
    void deliver(Peer& peer, const Parcel& parcel);
    bool isInSession(Peer& peer, std::uint64_t session, const std::string& route);
    void refuse(RefusalReason reason, Peer& peer);

    // In the order in which they are needed.
    const Table m_table;
    const KeyPair m_keys;
    const GatewayOptions m_options;
    const TableRow& m_own;
    const std::uint64_t m_epoch = randomId();
    const Nanoseconds m_started = Clock::get().monotonic();
    std::atomic<bool> m_isStopping{false};
    RefusalCounts m_refused;
    std::uint64_t m_taken = 0;       ///< frames of senders of this node
    std::uint64_t m_takenBefore = 0; ///< those that takeMoreFromInlets() knows
    host::CpidStore m_store;
    host::WaitSet m_waitSet;
    zmq::context_t m_context{1};
    Resolver m_resolver{m_waitSet, m_options.lookUp};
    QueueRoom m_room{m_options.allQueuesBytes};
    const Surroundings m_around{m_own.node, m_epoch,    m_keys, m_options, m_store, m_context,
                                m_waitSet,  m_resolver, m_room, m_refused, m_taken};
    std::unique_ptr<Entrance> m_entrance;
    std::unique_ptr<Receivers> m_receivers;
    std::vector<std::unique_ptr<Peer>> m_peers;
    std::unordered_map<TAaSysComNid, Peer*> m_peerOf;
    std::unique_ptr<StatusServer> m_statusServer;
    PlaceWatch m_place;
    Nanoseconds m_nextLook = m_started;
    std::vector<Record> m_records; ///< of the parcel that is being delivered
    Nanoseconds m_now = m_started;
};

Gateway::Loop::Loop(const host::RunDirectory& directory, const Table& table, const KeyPair& keys,
                    const GatewayOptions& options)
    : m_table(table),
      m_keys(keys),
      m_options(withShares(options, table.rows().size() - 1)),
      m_own(ownRow(directory, m_table, m_keys)),
      m_store(directory),
      m_place(directory)
{
    if (!m_store.tryBecomeGateway()) {
        throw host::EnvironmentError("process " + std::to_string(m_store.foreignGateway()) +
                                     " is the gateway of node " + nodeName(m_own.node) + " already");
    }
    raiseOpenFiles(m_table.rows().size());
    m_context.set(zmq::ctxopt::blocky, false);
    m_context.set(zmq::ctxopt::max_sockets, greatestSockets(m_table.rows().size()));
    directory.makeSubdirectory(host::nodeSocketFolder);
    m_entrance = std::make_unique<Entrance>(m_context, m_waitSet, m_table, m_own, m_keys, m_options, m_refused);
    m_receivers = std::make_unique<Receivers>(directory, m_options, m_waitSet);
    for (const TableRow& row : m_table.rows()) {
        if (row.node != m_own.node) {
            addPeer(directory, row);
        }
    }
    m_statusServer = std::make_unique<StatusServer>(directory, m_waitSet, [this] { return status(); });
    m_place.add(statusSocketName);
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "Gateway of node 0x%04X: port %u, %zu other nodes, epoch %016llX",
                  m_own.node, static_cast<unsigned>(m_own.port), m_peers.size(),
                  static_cast<unsigned long long>(m_epoch));
}

void Gateway::Loop::addPeer(const host::RunDirectory& directory, const TableRow& row)
{
    Peer& peer = *m_peers.emplace_back(std::make_unique<Peer>(row, m_peers.size(), m_around));
    m_peerOf[row.node] = &peer;
    peer.life.whenEnded([this, &peer](Nanoseconds) { m_receivers->dropKept(peer.account); });
    peer.endpoint = host::UnixEndpoint::open(directory, host::nodeSocketName(row.node), "node " + nodeName(row.node),
                                             m_waitSet, peer.inlet);
    if (!peer.endpoint) {
        throw host::EnvironmentError("the socket for node " + nodeName(row.node) + " in " + directory.path() +
                                     " cannot be made: " + std::strerror(errno));
    }
    m_place.add(host::nodeSocketName(row.node));
}

Gateway::Loop::~Loop()
{
    for (const auto& peer : m_peers) {
        peer->endpoint.reset(); // takes in what senders have handed over, so that it is counted
    }
    try {
        m_receivers->flushAll();
    } catch (const std::bad_alloc&) { // what stays is told of
    }
    for (const auto& peer : m_peers) {
        if (const std::uint64_t pending = peer->account.pending; pending > 0) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                          "The gateway ends: %llu messages of node 0x%04X have not been read by their receivers",
                          static_cast<unsigned long long>(pending), peer->account.node);
        }
        if (const std::size_t waiting = peer->link.queue().messages(); waiting > 0) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                          "The gateway ends: %zu messages to node 0x%04X have not been confirmed", waiting,
                          peer->account.node);
        }
    }
}

void Gateway::Loop::run()
{
    while (!m_isStopping.load()) {
        step();
    }
}

/// Work for one other node. For want of memory both its connections begin anew: nothing is lost by that, and there may
/// be memory later.
template <class Work>
void Gateway::Loop::within(Peer& peer, const Work& work)
{
    try {
        work();
    } catch (const std::bad_alloc&) {
        peer.link.onFault(LinkFault::Cut, m_now);
        peer.reception.endSession();
    }
}

void Gateway::Loop::step()
{
    m_waitSet.wait(isAnythingDirty() ? host::Deadline(0) : deadline());
    takeMoreFromInlets();
    m_now = Clock::get().monotonic();
    lookAtPlace();
    flush();
    m_entrance->serve(*this);
    serveWires();
    takeResolved();
    for (const auto& peer : m_peers) {
        if (peer->link.deadline() <= m_now) {
            within(*peer, [&] { peer->link.tick(m_now); });
        }
    }
    m_receivers->tick(m_now);
    flush();
    confirmWhereDue();
}

void Gateway::Loop::lookAtPlace()
{
    if (m_now < m_nextLook) {
        return;
    }
    m_nextLook = m_now + m_options.heartbeat;
    if (const std::optional<std::string> missing = m_place.whatIsMissing()) {
        throw host::EnvironmentError(*missing + ", and nobody finds this gateway any more");
    }
}

/// Where many came at once there may be more: they go on together. A single one goes on without another look.
void Gateway::Loop::takeMoreFromInlets()
{
    for (int count = 1; count < inletStepsAtOnce && m_taken - m_takenBefore >= framesInAStream; ++count) {
        m_takenBefore = m_taken;
        m_waitSet.serveLast();
    }
    m_takenBefore = m_taken;
}

void Gateway::Loop::flush()
{
    for (const auto& peer : m_peers) {
        peer->link.flush();
    }
}

void Gateway::Loop::serveWires()
{
    for (const auto& peer : m_peers) {
        if (peer->wire.isDirty()) {
            within(*peer, [&] { peer->wire.serve(peer->link, m_now); });
        }
    }
}

void Gateway::Loop::takeResolved()
{
    for (const Resolver::Found& found : m_resolver.take()) {
        Peer& peer = *m_peers[found.ticket];
        within(peer, [&] { peer.link.onResolved(found.addresses, m_now); });
    }
}

void Gateway::Loop::confirmWhereDue()
{
    for (const auto& peer : m_peers) {
        if (peer->reception.deadline() <= m_now) {
            within(*peer, [&] { m_entrance->answer(peer->reception.route(), wireBytes(peer->reception.confirm())); });
        }
    }
}

bool Gateway::Loop::isAnythingDirty() const
{
    return m_entrance->isDirty() ||
           std::any_of(m_peers.begin(), m_peers.end(), [](const auto& peer) { return peer->wire.isDirty(); });
}

Nanoseconds Gateway::Loop::deadline() const
{
    Nanoseconds earliest = std::min(m_receivers->deadline(), m_nextLook);
    for (const auto& peer : m_peers) {
        earliest = std::min({earliest, peer->link.deadline(), peer->reception.deadline()});
    }
    return earliest;
}

std::size_t Gateway::Loop::onMessage(TAaSysComNid node, const std::string& route, std::span<const std::byte> bytes)
{
    const auto known = m_peerOf.find(node);
    if (known == m_peerOf.end()) {
        return 0; // the key check lets nobody else in
    }
    Peer& peer = *known->second;
    const WireMessage message = readWire(bytes);
    within(peer, [&] { onMessage(peer, message, route); });
    const auto* const parcel = std::get_if<Parcel>(&message);
    return parcel ? parcel->count : 0;
}

void Gateway::Loop::onMessage(Peer& peer, const WireMessage& message, const std::string& route)
{
    if (const auto* const parcel = std::get_if<Parcel>(&message)) {
        onParcel(peer, *parcel, route);
    } else if (const auto* const ping = std::get_if<Ping>(&message)) {
        onPing(peer, *ping, route);
    } else if (const auto* const greeting = std::get_if<Greeting>(&message)) {
        onGreeting(peer, *greeting, route);
    } else if (const auto* const other = std::get_if<OtherVersion>(&message)) {
        refuse(RefusalReason::Version, peer);
        if (other->isGreeting) {
            m_entrance->answer(route, wireBytes(Refusal{RefusalCode::Version, other->attempt}));
        }
    } else {
        refuse(RefusalReason::Garbage, peer);
    }
}

/// Logs the first of its kind and then ever more rarely, of each node for itself.
void Gateway::Loop::refuse(RefusalReason reason, Peer& peer)
{
    ++m_refused[reason];
    const std::uint64_t count = ++peer.refused[reason];
    if (std::has_single_bit(count)) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "Refused what the gateway of node 0x%04X sent: %s (%llu so far)",
                      peer.account.node, std::string(nameOf(reason)).c_str(), static_cast<unsigned long long>(count));
    }
}

void Gateway::Loop::onGreeting(Peer& peer, const Greeting& greeting, const std::string& route)
{
    if (greeting.from != peer.account.node || greeting.to != m_own.node) {
        refuse(RefusalReason::Garbage, peer);
        m_entrance->answer(route, wireBytes(Refusal{RefusalCode::WrongNode, greeting.attempt}));
        return;
    }
    if (const std::optional<Welcome> welcome = peer.reception.onGreeting(greeting, m_epoch, route)) {
        m_entrance->answer(route, wireBytes(*welcome));
    } else {
        refuse(RefusalReason::Stale, peer);
        m_entrance->answer(route, wireBytes(Refusal{RefusalCode::NoSession, greeting.attempt}));
    }
}

bool Gateway::Loop::isInSession(Peer& peer, std::uint64_t session, const std::string& route)
{
    const std::uint64_t before = peer.reception.confirmation().session;
    if (peer.reception.onSession(session, m_now) == Reception::Verdict::Taken) {
        if (session != before) {
            peer.link.tryNow(m_now); // who has just come can be reached
        }
        return true;
    }
    refuse(RefusalReason::Stale, peer);
    m_entrance->answer(route, wireBytes(Refusal{RefusalCode::NoSession, session}));
    return false;
}

void Gateway::Loop::onPing(Peer& peer, const Ping& ping, const std::string& route)
{
    if (isInSession(peer, ping.session, route)) {
        m_entrance->answer(route, wireBytes(Pong{peer.reception.confirm(), ping.stamp}));
    }
}

void Gateway::Loop::onParcel(Peer& peer, const Parcel& parcel, const std::string& route)
{
    if (!isInSession(peer, parcel.session, route)) {
        return;
    }
    peer.link.onConfirmation(parcel.confirmation);
    m_records.reserve(parcel.count); // so that nothing fails for want of memory that has been taken
    switch (peer.reception.onParcel(parcel, m_now)) {
    case Reception::Verdict::Taken:
        deliver(peer, parcel);
        break;
    case Reception::Verdict::Again:
        break;
    case Reception::Verdict::Stale:
    case Reception::Verdict::Missing:
        refuse(RefusalReason::Stale, peer);
        m_entrance->answer(route, wireBytes(Refusal{RefusalCode::NoSession, parcel.session}));
        break;
    }
}

void Gateway::Loop::deliver(Peer& peer, const Parcel& parcel)
{
    m_records.clear();
    std::uint64_t forged = 0;
    for (std::span<const std::byte> rest = parcel.records; !rest.empty();) {
        const Record record = takeRecord(rest);
        const bool isPeers = record.header.sender == 0 || record.header.sender >> 16 == peer.account.node;
        if (isPeers && record.header.receiver >> 16 == m_own.node) {
            m_records.push_back(record);
        } else {
            ++forged;
        }
    }
    peer.received += parcel.count;
    if (forged > 0) {
        std::uint64_t& dropped = peer.account.dropped[DropReason::Forged];
        if (std::bit_width(dropped) != std::bit_width(dropped + forged)) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                          "Dropped %llu messages that the gateway of node 0x%04X brought: sender or receiver is not "
                          "of its node or this one (%llu so far)",
                          static_cast<unsigned long long>(forged), peer.account.node,
                          static_cast<unsigned long long>(dropped + forged));
        }
        dropped += forged;
    }
    m_receivers->deliver(peer.account, m_records);
}

GatewayStatus Gateway::Loop::status() const
{
    GatewayStatus status;
    const Nanoseconds now = Clock::get().monotonic();
    status.node = m_own.node;
    status.pid = getpid();
    status.age = now - m_started;
    status.epoch = m_epoch;
    status.refused = m_refused;
    for (const auto& peer : m_peers) {
        LinkStatus& link = status.links.emplace_back();
        peer->link.describe(link, now);
        link.received = peer->received;
        link.delivered = peer->account.delivered;
        link.pending = peer->account.pending;
        for (std::size_t index = 0; index < dropReasonCount; ++index) {
            const auto reason = static_cast<DropReason>(index);
            link.dropped[reason] += peer->account.dropped[reason];
        }
    }
    return status;
}

namespace {

/// Whatever @p work cannot go on for is told as an EnvironmentError.
template <class Work>
void explained(const Work& work)
{
    try {
        work();
    } catch (const zmq::error_t& error) {
        throw host::EnvironmentError(std::string("ZeroMQ: ") + error.what());
    } catch (const std::system_error& error) {
        throw host::EnvironmentError(error.what());
    } catch (const std::bad_alloc&) {
        throw host::EnvironmentError("memory has run out");
    }
}

} // namespace

Gateway::Gateway(const host::RunDirectory& directory, const Table& table, const KeyPair& keys,
                 const GatewayOptions& options)
{
    explained([&] { m_loop = std::make_unique<Loop>(directory, table, keys, options); });
}

Gateway::~Gateway() = default;

void Gateway::run()
{
    try {
        explained([this] { m_loop->run(); });
    } catch (const host::EnvironmentError& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "The gateway ends: %s", error.what());
        throw;
    }
}

void Gateway::stop() noexcept
{
    m_loop->stop();
}

} // namespace dorn::gateway
