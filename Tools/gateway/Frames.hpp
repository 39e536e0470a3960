// SPDX-License-Identifier: MIT
/// @file Frames.hpp
/// What gateways say to each other.
///
/// The node that sends has a ZeroMQ DEALER connected to the ROUTER of the node that receives, with CURVE: every
/// message is encrypted, and its sender proven. Towards each other two nodes have one such connection each.
///
///     sender                         receiver
///       Greeting  ──────────────────▶             who I am (epoch), from whom to whom, number of this attempt
///                 ◀──────────────────  Welcome    who I am (epoch), the session's id, the parcel I expect next
///       Parcel n  ──────────────────▶             messages in their order
///                 ◀──────────────────  Confirmation  of all parcels before a number, a few milliseconds later at most
///       Ping      ──────────────────▶             every half second
///                 ◀──────────────────  Pong
///                 ◀──────────────────  Refusal    of a greeting of another version, or of what is in no session
///
/// - A session begins for the receiver with the first Parcel or Ping that bears its id, not with the Greeting: what a
///   dead sender has left in the network begins nothing. Where another life of the sender has been met since the
///   Welcome it does not begin either, and neither counts a Welcome that answers a Greeting of before: see
///   PeerLife.hpp.
/// - Parcels are numbered from 1 for each pair of epochs. The receiver takes the one it expects, passes over earlier
///   ones and refuses later ones. A parcel that has not been confirmed is sent again in the next session, if the
///   receiver is still of the same epoch and says in its Welcome that it has not got it.
/// - A Parcel carries along what the sender has to confirm in the opposite direction.
///
/// All numbers are little-endian. Every message begins with its preamble: magic (4 bytes), version (2), kind (2), which
/// stay the same in every version.
#pragma once

#include "AaSysCom.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

namespace dorn::gateway {

constexpr std::uint32_t wireMagic = 0x77676F64;
constexpr std::uint16_t wireVersion = 1;

/// In front of each message in a parcel; its payload follows without padding.
struct RecordHeader {
    std::uint32_t id;
    std::uint32_t sender;
    std::uint32_t receiver;
    std::uint16_t payloadSize;
    static constexpr std::size_t size = 16; ///< the last two bytes are 0
};

/// A message of a parcel. The payload lies in the parcel.
struct Record {
    RecordHeader header;
    std::span<const std::byte> payload;
};

/// A parcel gets no further message when it has so many bytes of records.
constexpr std::size_t parcelTarget = 65536;
constexpr std::size_t parcelPreambleSize = 8 + 40;
/// The greatest message between gateways: one record of the greatest payload.
constexpr std::size_t greatestWireMessage = parcelPreambleSize + RecordHeader::size + AA_SYS_COM_MAX_PAYLOAD;
/// The limit that a connection is given: ZeroMQ counts what encryption adds, too.
constexpr std::size_t greatestEncrypted = greatestWireMessage + 256;

struct Greeting {
    std::uint64_t epoch = 0; ///< of the sender's life, not 0
    std::uint64_t attempt = 0;
    std::uint16_t from = 0; ///< node ids
    std::uint16_t to = 0;
};

struct Welcome {
    std::uint64_t attempt = 0; ///< the greeting's
    std::uint64_t epoch = 0;   ///< of the receiver's life, not 0
    std::uint64_t session = 0; ///< not 0
    std::uint64_t expected = 0;
};

struct Confirmation {
    std::uint64_t session = 0;
    std::uint64_t expected = 0; ///< all parcels before it have arrived
};

struct Parcel {
    std::uint64_t session = 0;
    std::uint64_t number = 0;
    Confirmation confirmation;          ///< of the opposite direction; session 0: none
    std::uint32_t count = 0;            ///< of records
    std::span<const std::byte> records; ///< in the message that was read
};

struct Ping {
    std::uint64_t session = 0;
    std::uint64_t stamp = 0;
};

struct Pong {
    Confirmation confirmation;
    std::uint64_t stamp = 0; ///< the ping's
};

enum class RefusalCode : std::uint16_t {
    Version = 1,   ///< of a Greeting; the refusal has the refuser's version in its preamble
    NoSession = 2, ///< the session is over, or a parcel is missing: to be begun anew
    WrongNode = 3  ///< of a Greeting: it is not for this node, or not from the node that its key belongs to
};

struct Refusal {
    RefusalCode code = RefusalCode::NoSession;
    std::uint64_t what = 0; ///< the attempt or session that is refused
};

/// A message of another version: a Greeting or an answer to one; nothing else is known of it.
struct OtherVersion {
    std::uint16_t version = 0;
    bool isGreeting = false;
    std::uint64_t attempt = 0; ///< of a greeting, as in this version
};

/// What is none of this protocol.
struct Garbage {};

using WireMessage = std::variant<Garbage, OtherVersion, Greeting, Welcome, Parcel, Confirmation, Ping, Pong, Refusal>;

/// Reads a message. A Parcel has been checked: its records fill it exactly, and are as many as it says. Its records
/// point into @p bytes.
WireMessage readWire(std::span<const std::byte> bytes);

/// Bytes of a message to be sent.
using WireBytes = std::vector<std::byte>;
WireBytes wireBytes(const Greeting& greeting);
WireBytes wireBytes(const Welcome& welcome);
WireBytes wireBytes(const Confirmation& confirmation);
WireBytes wireBytes(const Ping& ping);
WireBytes wireBytes(const Pong& pong);
WireBytes wireBytes(const Refusal& refusal);
/// What stands in front of a parcel's records.
std::array<std::byte, parcelPreambleSize> parcelPreamble(const Parcel& parcel);

/// Appends a record to a parcel's.
void appendRecord(WireBytes& records, const RecordHeader& header, std::span<const std::byte> payload);

/// Takes the first record off @p records, which has been checked and is not empty.
Record takeRecord(std::span<const std::byte>& records);

} // namespace dorn::gateway
