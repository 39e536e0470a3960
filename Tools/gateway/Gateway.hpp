// SPDX-License-Identifier: MIT
/// @file Gateway.hpp
/// The node gateway: carries messages between this node and the others of a table.
///
///     service ──▶ node/<id> ─┐                                     ┌─▶ cpid/<cpid> ──▶ service
///                            gateway ══ TCP, ZeroMQ, CURVE ══ gateway
///     service ◀── cpid/<cpid> ◀┘                                     └─ node/<id> ◀── service
///
/// 1. It takes the record lock of the node's gateway, listens on one socket `node/<id>` of the run directory for every
///    other node of the table, and on its own row's port for the other gateways. A process of the node that sends to
///    another node connects to that node's socket; where there is none the send fails at once.
/// 2. What arrives there is checked as between processes of the node (message, length, sender, credentials), and put
///    into the link's queue. The gateway reads at all times, so that a sender never waits for another node. The queue
///    is bounded by count and by bytes, and all queues together are by bytes; what is too much is dropped, the oldest
///    first that has not been sent, counted, and logged at the beginning and the end of a burst.
/// 3. Each link has a connection per direction, on which one node sends. It is tried until it holds, with back-off.
///    Both ends prove who they are by the keys of the table: a peer is the node that its key belongs to, whatever it
///    says.
/// 4. What is sent stays in the queue until the other gateway has confirmed it. After a cut both go on where they
///    were: nothing is lost and nothing delivered twice while both gateways live, see Frames.hpp. A gateway has an
///    epoch, a random number of its own for each life. A message is delivered to the life that was known when it was
///    accepted (any, when none had been met), from the life that accepted it, or it is dropped and counted.
/// 5. What arrives from another node goes to the receiver's socket with id, sender, receiver and payload untouched. A
///    receiver that does not read has its own bounded share of memory, dropped oldest first, and holds up nobody. Where
///    all of them take too much, the one that takes most loses its oldest. What is still kept at the end is logged.
/// 6. With every heartbeat it looks whether processes of the node still find it. Where its run directory or a socket in
///    that is gone it ends, so that whoever watches over it starts it anew in the place that is used now.
///
/// Order is kept for each pair of sender and receiver. Every message that was accepted is in the end confirmed or
/// counted under the reason for which it was dropped, see Status.hpp. Confirmed means: the other gateway has it.
///
/// One thread does everything in run(), besides ZeroMQ's own for the connections, and one at a time for each host name
/// that is being looked up. All times are of the clock that never steps. The process's limit of open files is raised to
/// 512 and 72 for each node of the table, if it is lower and may be: more connections than that, of whomever, are not
/// taken. With less than 64 and 8 for each node it does not start. A connection that has not proven who it is has two
/// seconds for it.
#pragma once

#include "gateway/Keys.hpp"
#include "gateway/Status.hpp"
#include "gateway/Table.hpp"
#include "node/RunDirectory.hpp"
#include "port/Clock.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dorn::gateway {

/// Bounds and times; the defaults are for a board.
struct GatewayOptions {
    /// Messages that may wait for a node, in flight or not; up to a quarter of them, and of their bytes, in flight.
    std::size_t queueMessages = 65536;
    /// Their bytes, each message with 16 bytes besides its payload. The other gateway confirms within 5 ms or 256 KiB:
    /// with less than 1 MiB here no more than a quarter of it is sent in 5 ms.
    std::size_t queueBytes = std::size_t{16} << 20;
    /// Bytes that may be in flight to a node; less where all nodes' together would take half of #allQueuesBytes.
    std::size_t windowBytes = std::size_t{4} << 20;
    /// Bytes that may wait for all nodes together: where they are more, the fullest queue drops its oldest messages.
    std::size_t allQueuesBytes = std::size_t{64} << 20;
    /// Messages that may be kept for one receiver that does not read.
    std::size_t receiverMessages = 16384;
    /// Their bytes, each message with 88 bytes besides its payload.
    std::size_t receiverBytes = std::size_t{4} << 20;
    /// Bytes that may be kept for all receivers of this node together: where they are more, the one with the most loses
    /// its oldest messages.
    std::size_t allReceiversBytes = std::size_t{64} << 20;

    Nanoseconds heartbeat = std::chrono::milliseconds(500); ///< between two heartbeats
    /// A link of which nothing is heard for so long is cut; another gateway's connection is asked for a
    /// sign of life then, and ended when there is none for three times that.
    Nanoseconds silence = std::chrono::seconds(2);
    Nanoseconds attempt = std::chrono::seconds(3);                 ///< a connection that is not up by then is given up
    Nanoseconds firstBackOff = std::chrono::milliseconds(100);     ///< before a link is tried again; doubled each time
    Nanoseconds greatestBackOff = std::chrono::milliseconds(5000); ///< the most it is doubled to

    /// Finds the numeric addresses of a host's name, empty: there are none. Runs in a thread of its own and may take
    /// any time. Empty: the system's.
    std::function<std::vector<std::string>(const std::string& host)> lookUp = {};

    /// Address on which to listen; empty: all of this machine's. The port is that of the own row.
    std::string listenAddress = {};
};

class Gateway {
public:
    /// Makes everything that run() needs. From here on other gateways find this one.
    /// @param directory of the node; stays with the caller
    /// @param table the nodes, this one among them
    /// @throws host::EnvironmentError when the table does not have this node, its row has another key than @p keys,
    /// another gateway of this node lives, or the port or a socket cannot be had; the text is for who set it up.
    Gateway(const host::RunDirectory& directory, const Table& table, const KeyPair& keys,
            const GatewayOptions& options = {});
    /// Closes all. Other nodes see the connections end; senders of this node find no way any more.
    ~Gateway();
    Gateway(const Gateway&) = delete;
    Gateway& operator=(const Gateway&) = delete;

    /// Carries messages until stop().
    /// @throws host::EnvironmentError when it cannot go on, as nobody on this node finds it any more, or what it works
    /// with fails as a whole; it has been logged. What fails with one other node ends the link to that, which is tried
    /// again.
    void run();
    /// Makes run() return soon, whether it has begun or not. Any thread; safe in a signal handler.
    void stop() noexcept;

private:
    class Loop;
    std::unique_ptr<Loop> m_loop;
};

} // namespace dorn::gateway
