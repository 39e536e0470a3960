// SPDX-License-Identifier: MIT
/// @file Status.hpp
/// What a gateway tells about itself and its links, and how to ask for it.
///
/// Messages add up on every link, at any moment:
///
///     accepted = confirmed + waiting + those dropped because of QueueFull, PeerRestarted, Unconfirmed
///     received = delivered + pending + those dropped because of NoReceiver, ReceiverFull, SenderRestarted, Forged
#pragma once

#include "AaSysCom.h"
#include "node/RunDirectory.hpp"
#include "port/Clock.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace dorn::gateway {

using host::Nanoseconds;

/// Where a link to another node stands. Each direction has a connection of its own; this is about the one on which the
/// own node sends.
enum class LinkState : std::uint8_t {
    Waiting,    ///< down; it is tried again when the back-off time is over
    Resolving,  ///< the host's name is being looked up
    Connecting, ///< a connection, its handshake and the other gateway's welcome are awaited
    Up          ///< messages flow
};
constexpr std::size_t linkStateCount = 4;

/// Why a link was last down.
enum class LinkFault : std::uint8_t {
    None,        ///< it has not been down since it was first up, or has not been tried yet
    HostUnknown, ///< the host's name cannot be resolved
    Unreachable, ///< nobody answers at the host and port
    KeyRefused,  ///< the other gateway does not know the own key, or has another one than the table says
    Version,     ///< the other gateway speaks another version
    Cut,         ///< the connection ended
    Silent,      ///< the connection is there, but nothing has been heard for the silence time
    Refused,     ///< the other gateway asked for a new beginning, as after a gap
    Garbage,     ///< the other gateway sent what nobody understands
    WrongNode    ///< the other gateway's table has other node ids at the two keys
};
constexpr std::size_t linkFaultCount = 10;

/// Why a message was dropped.
enum class DropReason : std::uint8_t {
    // By the sender's gateway:
    QueueFull,     ///< the link's queue was full, and it was the oldest that had not been sent
    PeerRestarted, ///< it was meant for a life of the other gateway that has ended
    Unconfirmed,   ///< it was sent to a life that ended without saying whether it had arrived
    // By the receiver's gateway:
    NoReceiver,      ///< nobody holds the receiver's cpid
    ReceiverFull,    ///< the receiver does not read: its share of memory was full, and it was the oldest
    SenderRestarted, ///< it still waited for its receiver when its sender's gateway had begun a new life
    Forged           ///< its sender is not of the node whose key brought it, or its receiver not of this node
};
constexpr std::size_t dropReasonCount = 7;

/// Why something was refused that is on no link's account.
enum class RefusalReason : std::uint8_t {
    UnknownKey, ///< a connection whose key is in no row of the table, or is the own one
    Handshake,  ///< a connection that does not complete the handshake: no CURVE, or meant for another key
    Version,    ///< a greeting of another version
    Garbage,    ///< a message that is none of this protocol
    Stale,      ///< a message of a session that is over
    LocalFrame  ///< what a process of this node handed in: no message, for another node, or with a forged sender
};
constexpr std::size_t refusalReasonCount = 6;

/// The names that people see: "up", "host unknown", "queue full", "unknown key".
std::string_view nameOf(LinkState state);
std::string_view nameOf(LinkFault fault);
std::string_view nameOf(DropReason reason);
std::string_view nameOf(RefusalReason reason);

/// A count for each reason.
template <class Reason, std::size_t count>
class Counts {
public:
    std::uint64_t& operator[](Reason reason) { return m_counts[static_cast<std::size_t>(reason)]; }
    std::uint64_t operator[](Reason reason) const { return m_counts[static_cast<std::size_t>(reason)]; }
    std::uint64_t sum() const
    {
        std::uint64_t all = 0;
        for (const std::uint64_t one : m_counts) {
            all += one;
        }
        return all;
    }
    const std::array<std::uint64_t, count>& all() const { return m_counts; }
    friend bool operator==(const Counts& left, const Counts& right) = default;

private:
    std::array<std::uint64_t, count> m_counts{};
};
using DropCounts = Counts<DropReason, dropReasonCount>;
using RefusalCounts = Counts<RefusalReason, refusalReasonCount>;

/// A link to another node, both directions. Times are those of the clock that never steps.
struct LinkStatus {
    TAaSysComNid node = 0;
    std::string host;
    std::uint16_t port = 0;
    LinkState state = LinkState::Waiting;
    LinkFault fault = LinkFault::None;    ///< why it is down, or was down last
    Nanoseconds inState{0};               ///< how long it has been up, or not up
    std::optional<Nanoseconds> roundTrip; ///< of the last heartbeat; none while the link is not up
    std::uint64_t ups = 0;                ///< how often it came up
    std::uint64_t peerEpoch = 0;          ///< which life of the other gateway it is; 0 when none has been met

    // From this node to the other, in messages:
    std::uint64_t accepted = 0;  ///< taken from senders of this node
    std::uint64_t confirmed = 0; ///< sent, and confirmed by the other gateway
    std::uint64_t waiting = 0;   ///< not confirmed yet
    std::uint64_t waitingBytes = 0;

    // From the other node to this one, in messages:
    std::uint64_t received = 0;
    std::uint64_t delivered = 0; ///< handed to their receivers
    std::uint64_t pending = 0;   ///< kept for receivers that are slow to read

    DropCounts dropped;

    friend bool operator==(const LinkStatus& left, const LinkStatus& right) = default;
};

/// A gateway.
struct GatewayStatus {
    TAaSysComNid node = 0;
    pid_t pid = 0;
    Nanoseconds age{0};      ///< how long it has been running
    std::uint64_t epoch = 0; ///< of this life
    RefusalCounts refused;
    std::vector<LinkStatus> links; ///< by node id, without the own node

    friend bool operator==(const GatewayStatus& left, const GatewayStatus& right) = default;
};

/// As it goes through the status socket: lines of words.
std::string statusText(const GatewayStatus& status);
/// The status that a text stands for; nothing when it is none.
std::optional<GatewayStatus> parseStatus(std::string_view text);

/// What a question for the status found.
struct FetchedStatus {
    pid_t holder = 0; ///< process that is this node's gateway; 0 when none lives; -1 when it cannot be told, as so many
                      ///< ask or the own process is short of what it takes to ask
    std::optional<GatewayStatus> status; ///< nothing when no gateway lives or it did not answer in time
};

/// How long fetchStatus() waits for an answer at most.
constexpr std::chrono::milliseconds statusPatience{1500};

/// Asks the gateway of a node of this machine. Returns within #statusPatience, whatever hangs.
/// @throws host::EnvironmentError when the node's directory cannot be opened.
FetchedStatus fetchStatus(const host::RunDirectory& directory, Nanoseconds patience = statusPatience);

} // namespace dorn::gateway
