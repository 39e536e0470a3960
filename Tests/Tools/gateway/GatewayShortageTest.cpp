// SPDX-License-Identifier: MIT
// Gateways that run out of descriptors: because strangers take them, or because the machine has no more.
#include "GatewayProcesses.hpp"
#include "NodeTest.hpp"
#include "OpenFiles.hpp"
#include "PeakMemory.hpp"
#include "TestNet.hpp"
#include "port/Descriptor.hpp"

#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;
/// As Docs/gateway.md promises for two nodes.
constexpr std::size_t openFilesLimit = 512 + 2 * 72;

/// Connections to a gateway's port that say nothing.
class Strangers {
public:
    Strangers(const TableRow& row, std::size_t count)
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(row.port);
        inet_pton(AF_INET, row.host.c_str(), &address.sin_addr);
        for (std::size_t number = 0; number < count; ++number) {
            m_sockets.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            const int result =
                connect(m_sockets.back().get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
            EXPECT_TRUE(m_sockets.back() && (result == 0 || errno == EINPROGRESS));
        }
    }

private:
    std::vector<host::Descriptor> m_sockets;
};

class GatewayShortageTest : public testkit::NodeTest {
protected:
    GatewayShortageTest()
    {
        const OpenFiles few(300);
        m_nodes.start(0);
        m_nodes.start(1);
    }

    const TestNet& net() const { return m_nodes.net(); }
    bool areUp() const
    {
        return waitUntil(
            [this] { return net().link(0, 1).state == LinkState::Up && net().link(1, 0).state == LinkState::Up; });
    }
    /// Sends from the first node to the second. @return how many arrived
    static std::uint32_t carry(const NodeSender& sender, CpidReceiver& receiver, std::uint32_t count)
    {
        for (std::uint32_t number = 0; number < count; ++number) {
            EXPECT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number));
        }
        std::uint32_t inOrder = 0;
        for (const Arrived& one : receiver.takeAll(count)) {
            inOrder += one.number() == inOrder ? 1 : 0;
        }
        return inOrder;
    }

    GatewayProcesses m_nodes{2};
};

TEST_F(GatewayShortageTest, MoreStrangersThanThereAreDescriptorsHoldUpNoLink)
{
    constexpr std::size_t count = 900;
    const OpenFiles many(4096);
    if (many.hard() < count + 300) {
        GTEST_SKIP() << "no more than " << many.hard() << " files may be open, too few for this test";
    }
    ASSERT_TRUE(areUp());
    CpidReceiver receiver(net().directory(1), receiverCpid);
    const NodeSender sender(net().directory(0), nodeId(1));
    ASSERT_EQ(carry(sender, receiver, 1), 1U);

    const PeakMemory peak(m_nodes.pid(1));
    const Strangers strangers(net().rows()[1], count);
    ASSERT_TRUE(waitUntil([this] { return m_nodes.descriptors(1) == openFilesLimit; }));
    EXPECT_EQ(carry(sender, receiver, 500), 500U);

    EXPECT_TRUE(waitUntil([this] {
        const std::optional<GatewayStatus> status = fetchStatus(net().directory(1)).status;
        return status && status->refused[RefusalReason::Handshake] == count;
    }));
    EXPECT_EQ(net().link(0, 1).ups, 1U);
    EXPECT_EQ(net().link(0, 1).confirmed, 501U);
    EXPECT_EQ(net().link(1, 0).delivered, 501U);
    EXPECT_LT(m_nodes.descriptors(1), 100U);
    EXPECT_LE(peak.growth(), openFilesLimit << 16U); // 64 KiB for each
}

TEST_F(GatewayShortageTest, WhatIsThereGoesOnWithoutDescriptorsAndTheRestIsFoundAgain)
{
    ASSERT_TRUE(areUp());
    CpidReceiver receiver(net().directory(1), receiverCpid);
    const NodeSender sender(net().directory(0), nodeId(1));
    ASSERT_EQ(carry(sender, receiver, 1), 1U);
    bool isLateTaken = false;
    {
        const NothingCanBeOpened shortage(m_nodes.pid(0));
        EXPECT_FALSE(fetchStatus(net().directory(0), std::chrono::milliseconds(50)).status);
        EXPECT_EQ(carry(sender, receiver, 500), 500U);

        m_nodes.kill(1);
        m_nodes.start(1); // to which nobody can connect
        const NodeSender late(net().directory(0), nodeId(1));
        isLateTaken = late.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 1); // or it is turned away
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 2));
    }

    ASSERT_TRUE(waitUntil([this] { return net().link(0, 1).ups == 2; }));
    EXPECT_EQ(carry(sender, receiver, 500), 500U);
    ASSERT_TRUE(net().waitForConfirmed(0, 1));
    using enum DropReason;
    const LinkStatus link = net().link(0, 1);
    EXPECT_EQ(link.accepted, 501U + 1U + 500U + (isLateTaken ? 1U : 0U));
    EXPECT_EQ(link.accepted,
              link.confirmed + link.dropped[QueueFull] + link.dropped[PeerRestarted] + link.dropped[Unconfirmed]);
    EXPECT_EQ(net().link(1, 0).received, 500U); // nothing of what was for the life before
}

} // namespace
} // namespace dorn::gateway::test
