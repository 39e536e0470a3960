// SPDX-License-Identifier: MIT
// What fails in a gateway itself: with one other node, or as a whole.
#include "FailingZmq.hpp"
#include "NodeTest.hpp"
#include "RawPeer.hpp"
#include "TestNet.hpp"

#include <algorithm>
#include <cerrno>
#include <future>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <thread>
#include <zmq.h>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;

class GatewayOwnFaultsTest : public testkit::NodeTest {
protected:
    void bringUp()
    {
        m_net.startAll();
        ASSERT_TRUE(m_net.waitForLinks());
    }
    /// How often all links together have been up.
    std::uint64_t ups() const
    {
        std::uint64_t sum = 0;
        for (std::size_t place = 0; place < m_net.size(); ++place) {
            for (const LinkStatus& link : m_net.status(place).links) {
                sum += link.ups;
            }
        }
        return sum;
    }
    bool hasBeenDown(LinkFault fault) const
    {
        for (std::size_t place = 0; place < m_net.size(); ++place) {
            for (const LinkStatus& link : m_net.status(place).links) {
                if (link.fault == fault) {
                    return true;
                }
            }
        }
        return false;
    }
    void send(std::uint32_t number) const
    {
        const NodeSender sender(m_net.directory(0), nodeId(1));
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number));
    }

    TestNet m_net{3};
};

TEST_F(GatewayOwnFaultsTest, LinkWhoseSocketFailsIsCutAndComesBackAlone)
{
    for (const ZmqCall call : {ZmqCall::Receive, ZmqCall::Send}) {
        bringUp();
        const std::uint64_t before = ups();
        const FailNextZmq failure(call, ZMQ_DEALER, ENOTSOCK);

        ASSERT_TRUE(waitUntil([&] { return failure.hasFailed() && ups() == before + 1; }));
        EXPECT_TRUE(m_net.waitForLinks());
        EXPECT_TRUE(hasBeenDown(LinkFault::Cut));
        EXPECT_EQ(ups(), before + 1);
        for (std::size_t place = 0; place < m_net.size(); ++place) {
            m_net.stop(place);
        }
    }
}

TEST_F(GatewayOwnFaultsTest, EntranceThatFailsEndsTheGatewayWithAWord)
{
    GatewayOptions options = quickOptions();
    options.listenAddress = m_net.host();
    for (const ZmqCall call : {ZmqCall::Receive, ZmqCall::Send}) {
        m_log.clear();
        Gateway gateway(m_net.directory(0), m_net.table(), m_net.keys(0), options);
        std::future<void> running = std::async(std::launch::async, [&gateway] { gateway.run(); });
        const FailNextZmq failure(call, ZMQ_ROUTER, ENOTSOCK);
        RawPeer peer(m_net.rows()[0], m_net.keys(1));
        peer.send(wireBytes(Greeting{1, 1, 0x0102, 0x0101})); // it would be welcomed

        std::string why;
        if (running.wait_for(testkit::generousBound) != std::future_status::ready) {
            gateway.stop();
        }
        try {
            running.get();
        } catch (const host::EnvironmentError& error) {
            why = error.what();
        }
        EXPECT_EQ(why, "ZeroMQ: Socket operation on non-socket");
        EXPECT_THAT(m_log.texts(), testing::Contains("Error 0x0 The gateway ends: " + why));
    }
}

TEST_F(GatewayOwnFaultsTest, SocketsSufficeForTheGreatestTable)
{
    constexpr rlim_t openFiles = 64 + 8 * maxTableRows;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_max < openFiles) {
        GTEST_SKIP() << "this process may not have " << openFiles << " open files";
    }
    std::vector<TableRow> rows = m_net.rows();
    while (rows.size() < maxTableRows) {
        rows.push_back({nodeId(rows.size()), m_net.host(), TestNet::freePort(), makeKeyPair().publicKey});
    }
    GatewayOptions options = quickOptions();
    options.listenAddress = m_net.host();
    options.firstBackOff = std::chrono::hours(1); // each is tried once
    Gateway gateway(m_net.directory(0), Table(rows), m_net.keys(0), options);
    std::thread running([&gateway] { gateway.run(); });

    EXPECT_TRUE(waitUntil([this] {
        const std::vector<LinkStatus> links = m_net.status(0).links;
        return std::all_of(links.begin(), links.end(),
                           [](const LinkStatus& link) { return link.fault == LinkFault::Unreachable; });
    }));
    EXPECT_EQ(m_net.status(0).links.size(), maxTableRows - 1);
    constexpr int ofALink = 3; // and as many that are ending
    EXPECT_GE(greatestNumberOfSockets(), 2 * ofALink * static_cast<int>(maxTableRows));
    gateway.stop();
    running.join();
}

TEST_F(GatewayOwnFaultsTest, ParcelThatThereIsNoMemoryForIsSentAgain)
{
    bringUp();
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    {
        const NoMemoryAfterReceive shortage(parcelPreambleSize + RecordHeader::size);
        send(7);
        ASSERT_TRUE(waitUntil([&] { return shortage.hasBegun(); }));
    }

    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 7U);
    send(8);
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 8U); // and the first one not twice
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    EXPECT_EQ(m_net.link(0, 1).confirmed, 2U);
    EXPECT_EQ(m_net.link(0, 1).ups, 2U);
    EXPECT_EQ(m_net.link(1, 0).received, 2U);
    EXPECT_EQ(m_net.link(1, 0).delivered, 2U);
    EXPECT_EQ(m_net.link(2, 1).ups, 1U);
}

} // namespace
} // namespace dorn::gateway::test
