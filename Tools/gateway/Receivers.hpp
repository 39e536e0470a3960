// SPDX-License-Identifier: MIT
/// @file Receivers.hpp
/// The receivers of this node, as messages of other nodes reach them.
#pragma once

#include "gateway/Frames.hpp"
#include "gateway/Gateway.hpp"
#include "gateway/Status.hpp"
#include "port/Descriptor.hpp"
#include "syscom/Pack.hpp"
#include "syscom/UnixSocket.hpp"
#include "syscom/WaitSet.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace dorn::gateway {

/// What becomes of the messages of one other node. Kept messages point to it.
struct DeliveryAccount {
    TAaSysComNid node = 0;
    std::uint64_t delivered = 0;
    std::uint64_t pending = 0;
    DropCounts dropped;
};

/// Hands messages to the sockets of the cpids, never waiting. What a socket does not take is kept, each receiver's
/// apart and bounded, and handed over when there is room; the oldest go first when the bound is reached. Where all
/// receivers together take too much, the oldest of the one that takes most go.
class Receivers final : private host::WaitSource {
public:
    /// @throws std::system_error when descriptors have run out.
    Receivers(const host::RunDirectory& directory, const GatewayOptions& options, host::WaitSet& waitSet);
    ~Receivers() override;

    /// Delivers messages of one node in their order. The records' receivers are of this node. Where memory has run out
    /// they are dropped as if their receivers' share were full.
    void deliver(DeliveryAccount& account, std::span<const Record> records);
    /// Drops what is kept of one node, whose gateway's life has ended.
    void dropKept(DeliveryAccount& account);

    /// Hands over what is taken now, before the end.
    void flushAll();

    Nanoseconds deadline() const { return m_retryAt; }
    /// To be called once in a while also before the deadline: until then a cpid that nobody held is not looked for
    /// again.
    void tick(Nanoseconds now);

    std::size_t keptBytes() const { return m_keptBytes; }

private:
    struct Kept {
        DeliveryAccount* account;
        std::vector<std::byte> frame;
        std::size_t bytes() const { return frame.size() + overhead; }
        static constexpr std::size_t overhead = 64; ///< of a message that is kept, besides its frame
    };
    struct Receiver {
        host::UnixSocket socket{-1};
        std::deque<Kept> kept;
        std::size_t keptBytes = 0;
        bool isWatchedForRoom = false;
        bool isOverflowing = false;
    };
    enum class Outcome { Done, Full, Gone };

    void onReadable() override;
    void deliverRun(DeliveryAccount& account, TAaSysComCpid cpid, std::span<const Record> run);
    Receiver* receiverOf(TAaSysComCpid cpid);
    bool find(TAaSysComCpid cpid, sockaddr_un& address) const;
    Outcome connect(TAaSysComCpid cpid, Receiver& receiver);
    Outcome send(TAaSysComCpid cpid, Receiver& receiver, std::span<const Record> run, std::size_t& sent);
    void pack(std::span<const Record> run);
    Outcome sendKept(TAaSysComCpid cpid, Receiver& receiver);
    void flush(TAaSysComCpid cpid, Receiver& receiver);
    void keep(DeliveryAccount& account, TAaSysComCpid cpid, Receiver& receiver, std::span<const Record> run);
    void dropOldest(Receiver& receiver, DropReason reason);
    void loseConnection(Receiver& receiver);
    void watch(TAaSysComCpid cpid, Receiver& receiver);
    void noteNobody(DeliveryAccount& account, const Record& record, std::size_t count);
    bool isTooFull(const Receiver& receiver) const;
    void makeRoom(TAaSysComCpid cpid, Receiver& receiver);
    void drop(TAaSysComCpid cpid, Receiver& receiver);
    void keepOne(DeliveryAccount& account, TAaSysComCpid cpid, Receiver& receiver, const Record& record);

    const host::RunDirectory& m_directory;
    const GatewayOptions& m_options;
    host::WaitSet& m_waitSet;
    host::Descriptor m_poll;
    std::unordered_map<TAaSysComCpid, Receiver> m_receivers;
    host::Pack m_pack;
    std::size_t m_keptBytes = 0;
    std::unordered_set<TAaSysComCpid> m_nobody; ///< cpids that nobody held since the last tick
    Nanoseconds m_retryAt{host::noDeadline};    ///< for receivers that could not be connected to
};

} // namespace dorn::gateway
