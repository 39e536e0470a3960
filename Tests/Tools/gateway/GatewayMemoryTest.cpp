// SPDX-License-Identifier: MIT
// What a gateway's process takes of the machine's memory at most, against the limits that are promised. Peaks of the
// whole process are measured: what has grown since it was idle, with what libraries take for their work.
#include "GatewayProcesses.hpp"
#include "NodeTest.hpp"
#include "PeakMemory.hpp"
#include "RawPeer.hpp"
#include "Sanitizers.hpp"

#include <array>

namespace dorn::gateway::test {
namespace {

constexpr std::size_t mebi = std::size_t{1} << 20;
// As Docs/gateway.md promises.
constexpr std::size_t queueLimit = 16 * mebi;
constexpr std::size_t allQueuesLimit = 64 * mebi;
constexpr std::size_t receiverLimit = 4 * mebi;
constexpr std::size_t receiverMessages = 16384;
constexpr std::size_t allReceiversLimit = 64 * mebi;
constexpr std::size_t besidesPayload = 88; ///< of a message that is kept for a receiver

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;
/// What ZeroMQ has in flight of one connection at most, each way, besides the gateway's own copy.
constexpr std::size_t inFlight = 4 * mebi;
/// Code and data that come into memory when they are first used.
constexpr std::size_t firstUse = 4 * mebi;

/// The limit of a store as it shows from outside: what is in it, and what an allocator cannot use in between.
constexpr std::size_t withGaps(std::size_t limit)
{
    return limit + limit / 4;
}

class GatewayMemoryTest : public testkit::NodeTest {
protected:
    void SetUp() override
    {
        if (dorn::test::hasAddressSanitizer || dorn::test::hasThreadSanitizer) {
            GTEST_SKIP() << "the sanitizer takes memory of its own and keeps what was freed";
        }
    }

    static bool isUp(const GatewayProcesses& nodes, std::size_t from, std::size_t to)
    {
        return waitUntil([&] { return nodes.net().link(from, to).state == LinkState::Up; });
    }
    /// Sends to a receiver of another node, and waits until its gateway has taken all.
    static void send(const GatewayProcesses& nodes, std::size_t to, TAaSysComCpid cpid, std::uint32_t count,
                     std::size_t size)
    {
        const std::uint64_t before = nodes.net().link(0, to).accepted;
        const NodeSender sender(nodes.net().directory(0), nodeId(to));
        for (std::uint32_t number = 0; number < count; ++number) {
            ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(to, cpid), number, size));
        }
        ASSERT_TRUE(waitUntil([&] { return nodes.net().link(0, to).accepted == before + count; }));
    }
};

TEST_F(GatewayMemoryTest, NodeThatIsDownTakesNoMoreThanItsQueue)
{
    GatewayProcesses nodes(2);
    nodes.start(0);
    const PeakMemory peak(nodes.pid(0));

    for (const std::size_t size : {std::size_t{100}, std::size_t{2000}, std::size_t{65535}}) {
        send(nodes, 1, receiverCpid, static_cast<std::uint32_t>(64 * mebi / std::max<std::size_t>(size, 1000)), size);
    }

    const LinkStatus link = nodes.net().link(0, 1);
    EXPECT_LE(link.waitingBytes, queueLimit);
    EXPECT_GE(link.waitingBytes, queueLimit - 65551);
    EXPECT_EQ(link.accepted, link.waiting + link.dropped[DropReason::QueueFull]);
    EXPECT_LE(peak.growth(), withGaps(queueLimit) + firstUse);
    EXPECT_GE(peak.growth(), queueLimit - mebi); // or it is not what is measured
}

TEST_F(GatewayMemoryTest, NodesThatAreDownShareTheRoomOfAll)
{
    constexpr std::size_t others = 8;
    GatewayProcesses nodes(1 + others);
    nodes.start(0);
    const PeakMemory peak(nodes.pid(0));

    std::uint64_t waiting = 0;
    for (std::size_t to = 1; to <= others; ++to) {
        send(nodes, to, receiverCpid, static_cast<std::uint32_t>(16 * mebi / 16000), 16000);
    }
    for (std::size_t to = 1; to <= others; ++to) {
        const LinkStatus link = nodes.net().link(0, to);
        waiting += link.waitingBytes;
        EXPECT_EQ(link.accepted, link.waiting + link.dropped[DropReason::QueueFull]);
    }

    EXPECT_LE(waiting, allQueuesLimit);
    EXPECT_GE(waiting, allQueuesLimit - mebi);
    EXPECT_LE(peak.growth(), withGaps(allQueuesLimit) + firstUse);
}

TEST_F(GatewayMemoryTest, NodeThatHangsTakesNoMoreThanItsQueueAndWhatIsInFlight)
{
    GatewayProcesses nodes(2);
    nodes.start(0);
    nodes.start(1);
    ASSERT_TRUE(isUp(nodes, 0, 1));
    const PeakMemory peak(nodes.pid(0));
    nodes.gateway(1).signal(SIGSTOP);

    send(nodes, 1, receiverCpid, static_cast<std::uint32_t>(64 * mebi / 2000), 2000);

    EXPECT_LE(nodes.net().link(0, 1).waitingBytes, queueLimit);
    EXPECT_LE(peak.growth(), withGaps(queueLimit + inFlight) + firstUse);
    nodes.gateway(1).signal(SIGCONT);
}

TEST_F(GatewayMemoryTest, ReceiverThatNeverReadsTakesNoMoreThanItsShare)
{
    GatewayProcesses nodes(2);
    nodes.start(0);
    nodes.start(1);
    ASSERT_TRUE(isUp(nodes, 0, 1));
    const CpidReceiver lazy(nodes.net().directory(1), receiverCpid);
    const PeakMemory peak(nodes.pid(1));

    // As many as are allowed by count, and as by bytes.
    send(nodes, 1, receiverCpid, 200000, 0);
    ASSERT_TRUE(nodes.net().waitForConfirmed(0, 1));
    EXPECT_EQ(nodes.net().link(1, 0).pending, receiverMessages);
    send(nodes, 1, receiverCpid, 20000, 2000);
    ASSERT_TRUE(nodes.net().waitForConfirmed(0, 1));

    EXPECT_EQ(nodes.net().link(1, 0).pending, receiverLimit / (2000 + besidesPayload));
    EXPECT_LE(peak.growth(), withGaps(receiverLimit + inFlight) + firstUse);
}

TEST_F(GatewayMemoryTest, ReceiversThatNeverReadShareTheRoomOfAll)
{
    GatewayProcesses nodes(2);
    nodes.start(0);
    nodes.start(1);
    ASSERT_TRUE(isUp(nodes, 0, 1));
    constexpr TAaSysComCpid count = 32;
    std::vector<std::unique_ptr<CpidReceiver>> lazy;
    for (TAaSysComCpid cpid = receiverCpid; cpid < receiverCpid + count; ++cpid) {
        lazy.push_back(std::make_unique<CpidReceiver>(nodes.net().directory(1), cpid));
    }
    const PeakMemory peak(nodes.pid(1));

    for (TAaSysComCpid cpid = receiverCpid; cpid < receiverCpid + count; ++cpid) {
        send(nodes, 1, cpid, 420, 16000);
        ASSERT_TRUE(nodes.net().waitForConfirmed(0, 1));
    }

    const LinkStatus link = nodes.net().link(1, 0);
    EXPECT_LE(link.pending * (16000 + besidesPayload), allReceiversLimit);
    EXPECT_GE(link.pending * (16000 + besidesPayload), allReceiversLimit - mebi);
    EXPECT_EQ(link.received, link.delivered + link.pending + link.dropped[DropReason::ReceiverFull]);
    EXPECT_LE(peak.growth(), withGaps(allReceiversLimit + inFlight) + firstUse);
}

TEST_F(GatewayMemoryTest, FloodsTakeNoMoreThanWhatIsInFlight)
{
    GatewayProcesses nodes(3);
    nodes.start(0);
    nodes.start(1);
    ASSERT_TRUE(isUp(nodes, 0, 1));
    const PeakMemory peak(nodes.pid(1));
    RawPeer peer(nodes.net().rows()[1], nodes.net().keys(2));
    const std::uint64_t session = peer.greet(nodeId(2), nodeId(1)).value_or(Welcome{}).session;
    const CpidReceiver first(nodes.net().directory(1), receiverCpid);
    const CpidReceiver second(nodes.net().directory(1), receiverCpid + 1);
    // In turn, so that what comes takes the gateway more time than the connection.
    const std::array<TAaSysComSicad, 2> lazy{addressAt(1, receiverCpid), addressAt(1, receiverCpid + 1)};
    constexpr std::uint64_t parcels = 500;
    constexpr std::uint64_t garbage = 500;

    for (std::uint64_t number = 1; number <= parcels; ++number) {
        peer.sendMany(session, number, 4096, addressAt(2, senderCpid), lazy);
    }
    for (std::uint64_t number = 0; number < garbage; ++number) {
        peer.send(WireBytes(60000, std::byte{0xEE}));
    }

    EXPECT_TRUE(waitUntil([&] { return nodes.net().status(1).refused[RefusalReason::Garbage] == garbage; }));
    const LinkStatus link = nodes.net().link(1, 2);
    EXPECT_EQ(link.received, parcels * 4096);
    EXPECT_EQ(link.received, link.delivered + link.pending + link.dropped[DropReason::ReceiverFull]);
    EXPECT_EQ(link.pending, 2 * receiverMessages);
    EXPECT_EQ(nodes.net().link(0, 1).ups, 1U);
    EXPECT_LE(peak.growth(), withGaps(inFlight + 2 * receiverMessages * besidesPayload) + firstUse);
}

} // namespace
} // namespace dorn::gateway::test
