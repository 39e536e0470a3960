// SPDX-License-Identifier: MIT
// Four boards on a switch, each with a network of its own: cables are pulled, packets get lost, a board loses its
// power.
#include "GatewayProcesses.hpp"
#include "NodeTest.hpp"
#include "SwitchedBoards.hpp"

#include <algorithm>
#include <map>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid cpid = 0x0300;

/// Each board sends to each other one, and counts what arrives.
class Traffic {
public:
    Traffic(const TestNet& net, std::size_t count) : m_net(net), m_count(count)
    {
        for (std::size_t place = 0; place < count; ++place) {
            m_receivers.push_back(std::make_unique<CpidReceiver>(net.directory(place), cpid));
        }
    }

    /// Sends @p messages from each board to each other.
    void send(std::uint32_t messages)
    {
        for (std::size_t from = 0; from < m_count; ++from) {
            for (std::size_t to = 0; to < m_count; ++to) {
                if (from != to) {
                    send(from, to, messages);
                }
            }
        }
    }
    void send(std::size_t from, std::size_t to, std::uint32_t messages)
    {
        const NodeSender sender(m_net.directory(from), nodeId(to));
        std::uint32_t& sent = m_sent[{from, to}];
        for (std::uint32_t end = sent + messages; sent < end; ++sent) {
            ASSERT_TRUE(sender.send(addressAt(from, cpid), addressAt(to, cpid), sent, 400));
        }
    }
    /// Takes what has been sent from one board to another. @return whether it arrived, in order, each once
    bool take(std::size_t from, std::size_t to)
    {
        while (m_taken[{from, to}] < m_sent[{from, to}]) {
            const std::optional<Arrived> one = m_receivers[to]->take();
            if (!one) {
                return false;
            }
            const std::size_t origin = (one->header.sender >> 16) - nodeId(0);
            m_outOfOrder += one->number() == m_taken[{origin, to}]++ ? 0 : 1;
        }
        return m_outOfOrder == 0;
    }
    /// Takes all, and checks that there is no more and that the gateways have counted as much.
    void expectAll()
    {
        ASSERT_NO_FATAL_FAILURE(expectEach());
        for (const auto& receiver : m_receivers) {
            EXPECT_FALSE(receiver->take(std::chrono::milliseconds(0)));
        }
    }

private:
    void expectEach()
    {
        for (std::size_t from = 0; from < m_count; ++from) {
            for (std::size_t to = 0; to < m_count; ++to) {
                if (from != to) {
                    ASSERT_TRUE(take(from, to)) << from << " to " << to << ": " << m_taken[{from, to}] << " taken, "
                                                << m_outOfOrder << " out of order";
                    ASSERT_NO_FATAL_FAILURE(expectCounts(from, to));
                }
            }
        }
    }

    void expectCounts(std::size_t from, std::size_t to)
    {
        ASSERT_TRUE(m_net.waitForConfirmed(from, to));
        const LinkStatus link = m_net.link(from, to);
        const LinkStatus opposite = m_net.link(to, from);
        const std::uint32_t sent = m_sent[{from, to}];
        EXPECT_EQ(link.accepted, sent);
        EXPECT_EQ(link.confirmed, sent);
        EXPECT_EQ(link.dropped.sum(), 0U);
        EXPECT_EQ(opposite.received, sent);
        EXPECT_EQ(opposite.delivered, sent);
    }

    const TestNet& m_net;
    std::size_t m_count;
    std::vector<std::unique_ptr<CpidReceiver>> m_receivers;
    std::map<std::pair<std::size_t, std::size_t>, std::uint32_t> m_sent;
    std::map<std::pair<std::size_t, std::size_t>, std::uint32_t> m_taken;
    std::uint64_t m_outOfOrder = 0;
};

class GatewaySwitchTest : public testkit::NodeTest {
protected:
    static constexpr std::size_t count = 4;

    void SetUp() override
    {
        if (const std::string reason = m_boards.make(count); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
        for (std::size_t place = 0; place < count; ++place) {
            m_nodes.setHost(place, SwitchedBoards::address(place));
        }
        m_nodes.setSilence(1000);
    }
    void startAll()
    {
        for (std::size_t place = 0; place < count; ++place) {
            m_nodes.start(place, m_boards.on(place));
        }
        ASSERT_TRUE(areAllUp());
    }
    bool areAllUp() const
    {
        return waitUntil([this] {
            for (std::size_t place = 0; place < count; ++place) {
                for (const LinkStatus& link : net().status(place).links) {
                    if (link.state != LinkState::Up) {
                        return false;
                    }
                }
            }
            return true;
        });
    }
    const TestNet& net() const { return m_nodes.net(); }
    bool isLost(std::size_t from, std::size_t to) const
    {
        return waitUntil([&] { return net().link(from, to).state != LinkState::Up; });
    }
    /// Those of the first gateway, without any that is open only for a moment.
    std::size_t descriptorsAtRest() const
    {
        std::size_t fewest = m_nodes.descriptors(0);
        for (int look = 0; look < 5; ++look) {
            (void)net().status(0);
            fewest = std::min(fewest, m_nodes.descriptors(0));
        }
        return fewest;
    }
    /// A discipline that lets nothing through.
    static constexpr const char* blackHole = "bfifo limit 1";

    SwitchedBoards m_boards;
    GatewayProcesses m_nodes{count};
};

TEST_F(GatewaySwitchTest, CablesPulledAtEitherEndOrBothLoseAndRepeatNothing)
{
    startAll();
    Traffic traffic(net(), count);
    traffic.send(200);
    ASSERT_EQ(m_boards.setBoardsEnd(1, false), "");
    ASSERT_EQ(m_boards.setSwitchsEnd(2, false), "");
    traffic.send(200);
    for (const auto& [from, to] : {std::pair(0U, 1U), std::pair(1U, 0U), std::pair(2U, 3U), std::pair(3U, 2U)}) {
        EXPECT_TRUE(isLost(from, to)) << from << " to " << to;
    }
    EXPECT_TRUE(traffic.take(0, 3)); // who is not concerned is not held up
    EXPECT_TRUE(traffic.take(3, 0));
    EXPECT_EQ(net().link(0, 3).ups, 1U);

    // The first comes back while a third goes, at both ends.
    ASSERT_EQ(m_boards.setBoardsEnd(3, false), "");
    ASSERT_EQ(m_boards.setSwitchsEnd(3, false), "");
    ASSERT_EQ(m_boards.setBoardsEnd(1, true), "");
    traffic.send(200);
    EXPECT_TRUE(isLost(0, 3));
    EXPECT_TRUE(isLost(3, 0));
    ASSERT_EQ(m_boards.setSwitchsEnd(2, true), "");
    ASSERT_EQ(m_boards.setSwitchsEnd(3, true), "");
    ASSERT_EQ(m_boards.setBoardsEnd(3, true), "");

    ASSERT_TRUE(areAllUp());
    traffic.send(200);
    traffic.expectAll();
}

TEST_F(GatewaySwitchTest, WayThatIsCutInOneDirectionLosesAndRepeatsNothing)
{
    if (const std::string reason = m_boards.shapeTo(1, blackHole); !reason.empty()) {
        GTEST_SKIP() << "no way can be cut in one direction: " << reason;
    }
    ASSERT_EQ(m_boards.shapeTo(1, ""), "");
    startAll();
    Traffic traffic(net(), count);
    traffic.send(200);

    ASSERT_EQ(m_boards.shapeTo(1, blackHole), "");   // what others send to it and their confirmations
    ASSERT_EQ(m_boards.shapeFrom(2, blackHole), ""); // what it sends, and its confirmations
    traffic.send(200);
    for (const auto& [from, to] : {std::pair(0U, 1U), std::pair(1U, 0U), std::pair(2U, 3U), std::pair(3U, 2U)}) {
        EXPECT_TRUE(isLost(from, to)) << from << " to " << to;
    }
    EXPECT_TRUE(traffic.take(0, 3));
    ASSERT_EQ(m_boards.shapeTo(1, ""), "");
    ASSERT_EQ(m_boards.shapeFrom(2, ""), "");

    ASSERT_TRUE(areAllUp());
    traffic.send(200);
    traffic.expectAll();
}

TEST_F(GatewaySwitchTest, BoardThatLosesItsPowerLeavesNothingBehind)
{
    startAll();
    Traffic traffic(net(), count - 1); // the last one has no part in it
    traffic.send(100);
    traffic.expectAll();
    const std::size_t descriptors = descriptorsAtRest();
    for (std::uint64_t losses = 1; losses <= 3; ++losses) {
        ASSERT_EQ(m_boards.setSwitchsEnd(3, false), "");
        m_nodes.kill(3);
        ASSERT_EQ(m_boards.losePower(3), "");
        EXPECT_TRUE(isLost(0, 3));
        traffic.send(100);
        ASSERT_EQ(m_boards.powerUp(3), "");
        m_nodes.start(3, m_boards.on(3));
        ASSERT_TRUE(areAllUp());
        ASSERT_EQ(net().link(0, 3).ups, losses + 1);
    }
    EXPECT_TRUE(waitUntil([&] { return m_nodes.descriptors(0) == descriptors; }))
        << m_nodes.descriptors(0) << " instead of " << descriptors;

    // And when it does not come back at all, only what stands for it is there: what waits for it and its next try.
    ASSERT_EQ(m_boards.setSwitchsEnd(3, false), "");
    m_nodes.kill(3);
    ASSERT_EQ(m_boards.losePower(3), "");
    EXPECT_TRUE(waitUntil([&] { return m_nodes.descriptors(0) < descriptors; }));
    traffic.send(100);
    traffic.expectAll();
}

TEST_F(GatewaySwitchTest, NetworkThatLosesAndDelaysPacketsLosesAndRepeatsNoMessage)
{
    // Where the kernel cannot lose packets at random, a way too narrow for what is sent loses them, too.
    std::string discipline = "netem delay 5ms 3ms loss 3% duplicate 1% reorder 5%";
    const std::string whyNoRandom = m_boards.shapeTo(0, discipline);
    if (!whyNoRandom.empty()) {
        discipline = "tbf rate 20mbit burst 20kb latency 2ms";
        if (const std::string reason = m_boards.shapeTo(0, discipline); !reason.empty()) {
            GTEST_SKIP() << "the kernel has no traffic control: " << whyNoRandom << reason;
        }
    }
    for (std::size_t place = 0; place < count; ++place) {
        ASSERT_EQ(m_boards.shapeTo(place, discipline), "");
    }
    startAll();
    Traffic traffic(net(), count);

    traffic.send(1000);
    traffic.expectAll();
    for (std::size_t place = 0; place < count; ++place) {
        EXPECT_GT(m_boards.packetsLostTo(place), 0U) << place;
    }
}

TEST_F(GatewaySwitchTest, LinksOverIpv6CarryMessagesAndComeBack)
{
    for (std::size_t place = 0; place < count; ++place) {
        m_nodes.setHost(place, SwitchedBoards::address6(place));
    }
    if (!m_boards.hasIpv6()) {
        GTEST_SKIP() << "the kernel has no IPv6";
    }
    startAll();
    Traffic traffic(net(), count);
    traffic.send(200);
    ASSERT_EQ(m_boards.setSwitchsEnd(1, false), "");
    traffic.send(200);
    EXPECT_TRUE(isLost(0, 1));
    ASSERT_EQ(m_boards.setSwitchsEnd(1, true), "");

    ASSERT_TRUE(areAllUp());
    traffic.expectAll();
    EXPECT_EQ(net().link(0, 1).host, SwitchedBoards::address6(1));
}

} // namespace
} // namespace dorn::gateway::test
