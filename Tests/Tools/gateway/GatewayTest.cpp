// SPDX-License-Identifier: MIT
#include "gateway/Gateway.hpp"

#include "NodeTest.hpp"
#include "TestNet.hpp"

#include <gmock/gmock.h>
#include <map>
#include <unistd.h>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;

class GatewayTest : public testkit::NodeTest {};

TEST_F(GatewayTest, MessageArrivesOnTheOtherNodeUntouched)
{
    TestNet net(2);
    net.startAll();
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));

    ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 0xCAFE, 100, 0xABCDEF01));

    const std::optional<Arrived> arrived = receiver.take();
    ASSERT_TRUE(arrived);
    EXPECT_EQ(arrived->header.id, 0xABCDEF01U);
    EXPECT_EQ(arrived->header.sender, addressAt(0, senderCpid));
    EXPECT_EQ(arrived->header.receiver, addressAt(1, receiverCpid));
    EXPECT_EQ(arrived->header.payloadSize, 100);
    EXPECT_EQ(arrived->payload.size(), 100U);
    EXPECT_EQ(arrived->number(), 0xCAFEU);
    EXPECT_EQ(arrived->payload.back(), std::byte{0x5A});
}

TEST_F(GatewayTest, BurstArrivesInOrderAndIsConfirmed)
{
    TestNet net(2);
    net.startAll();
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));
    constexpr std::uint32_t count = 5000;

    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number, 4 + number % 300));
    }
    const std::vector<Arrived> all = receiver.takeAll(count);

    ASSERT_EQ(all.size(), count);
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_EQ(all[number].payload.size(), 4 + number % 300);
        ASSERT_EQ(all[number].number(), number);
    }
    ASSERT_TRUE(net.waitForConfirmed(0, 1));
    const LinkStatus link = net.link(0, 1);
    EXPECT_EQ(link.accepted, count);
    EXPECT_EQ(link.confirmed, count);
    EXPECT_EQ(link.waitingBytes, 0U);
    EXPECT_EQ(link.dropped.sum(), 0U);
    const LinkStatus opposite = net.link(1, 0);
    EXPECT_EQ(opposite.received, count);
    EXPECT_EQ(opposite.delivered, count);
    EXPECT_EQ(opposite.dropped.sum(), 0U);
}

TEST_F(GatewayTest, GreatestAndSmallestMessagesArrive)
{
    TestNet net(2);
    net.startAll();
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));

    for (const std::size_t size : {std::size_t{65535}, std::size_t{0}, std::size_t{65535}}) {
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 7, size));
        const std::optional<Arrived> arrived = receiver.take();
        ASSERT_TRUE(arrived);
        EXPECT_EQ(arrived->payload.size(), size);
    }
}

TEST_F(GatewayTest, EachPairOfSenderAndReceiverHasItsOrder)
{
    TestNet net(3);
    net.startAll();
    constexpr std::uint32_t count = 500;
    std::vector<std::unique_ptr<CpidReceiver>> receivers;
    for (const TAaSysComCpid cpid : {TAaSysComCpid{0x0300}, TAaSysComCpid{0x0301}}) {
        receivers.push_back(std::make_unique<CpidReceiver>(net.directory(2), cpid));
    }
    const NodeSender first(net.directory(0), nodeId(2));
    const NodeSender second(net.directory(1), nodeId(2));
    for (std::uint32_t number = 0; number < count; ++number) {
        for (const TAaSysComCpid cpid : {TAaSysComCpid{0x0300}, TAaSysComCpid{0x0301}}) {
            ASSERT_TRUE(first.send(addressAt(0, senderCpid), addressAt(2, cpid), number));
            ASSERT_TRUE(second.send(addressAt(1, senderCpid), addressAt(2, cpid), number));
        }
    }

    for (const auto& receiver : receivers) {
        std::map<TAaSysComSicad, std::uint32_t> next;
        for (const Arrived& one : receiver->takeAll(2 * count)) {
            EXPECT_EQ(one.number(), next[one.header.sender]++);
        }
        EXPECT_EQ(next[addressAt(0, senderCpid)], count);
        EXPECT_EQ(next[addressAt(1, senderCpid)], count);
    }
}

TEST_F(GatewayTest, BothDirectionsAtOnceConfirmEachOther)
{
    TestNet net(2);
    net.startAll();
    constexpr std::uint32_t count = 2000;
    CpidReceiver atFirst(net.directory(0), receiverCpid);
    CpidReceiver atSecond(net.directory(1), receiverCpid);
    const NodeSender toSecond(net.directory(0), nodeId(1));
    const NodeSender toFirst(net.directory(1), nodeId(0));
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_TRUE(toSecond.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number));
        ASSERT_TRUE(toFirst.send(addressAt(1, senderCpid), addressAt(0, receiverCpid), number));
    }

    EXPECT_EQ(atFirst.takeAll(count).size(), count);
    EXPECT_EQ(atSecond.takeAll(count).size(), count);
    ASSERT_TRUE(net.waitForConfirmed(0, 1));
    ASSERT_TRUE(net.waitForConfirmed(1, 0));
    for (const auto& [from, to] : {std::pair(0U, 1U), std::pair(1U, 0U)}) {
        const LinkStatus link = net.link(from, to);
        EXPECT_EQ(link.accepted, count);
        EXPECT_EQ(link.confirmed, count);
        EXPECT_EQ(link.received, count);
        EXPECT_EQ(link.delivered, count);
        EXPECT_EQ(link.dropped.sum(), 0U);
    }
}

TEST_F(GatewayTest, StatusTellsTheGatewayAndItsLinks)
{
    TestNet net(3);
    net.start(0);
    net.start(1);
    ASSERT_TRUE(net.waitForLinks());
    ASSERT_TRUE(waitUntil([&net] { return net.link(0, 1).roundTrip.has_value(); }));

    const GatewayStatus status = net.status(0);

    EXPECT_EQ(status.node, nodeId(0));
    EXPECT_EQ(status.pid, getpid());
    EXPECT_GT(status.age, Nanoseconds(0));
    EXPECT_NE(status.epoch, 0U);
    EXPECT_EQ(status.refused.sum(), 0U);
    ASSERT_EQ(status.links.size(), 2U);
    EXPECT_EQ(status.links[0].node, nodeId(1));
    EXPECT_EQ(status.links[0].host, net.host());
    EXPECT_EQ(status.links[0].port, net.rows()[1].port);
    EXPECT_EQ(status.links[0].state, LinkState::Up);
    EXPECT_EQ(status.links[0].peerEpoch, net.status(1).epoch);
    EXPECT_EQ(status.links[1].node, nodeId(2));
    EXPECT_NE(status.links[1].state, LinkState::Up);
    EXPECT_EQ(status.links[1].peerEpoch, 0U);
}

/// Why a gateway of a node cannot be made; empty when it can.
std::string whyNot(const TestNet& net, std::size_t place, const Table& table, const KeyPair& keys)
{
    try {
        GatewayOptions options;
        options.listenAddress = net.host();
        const Gateway gateway(net.directory(place), table, keys, options);
        return "";
    } catch (const host::EnvironmentError& error) {
        return error.what();
    }
}

TEST_F(GatewayTest, TableWithoutTheOwnNodeIsRefused)
{
    const TestNet net(2);
    const Table table({net.rows()[1]});

    EXPECT_EQ(whyNot(net, 0, table, net.keys(0)), "the table has no row for this node, 0x0101");
}

TEST_F(GatewayTest, NodeWithoutAnIdHasTheRowOfItsAddresses)
{
    const TestNet net(1);
    const host::RunDirectory directory(net.runPath(), 0);
    directory.makeSubdirectory(host::socketFolder);
    TableRow own = net.rows()[0];
    own.node = 0x0F01;
    GatewayOptions options;
    options.listenAddress = net.host();
    const KeyPair keys = makeKeyPair();
    const RunningGateway gateway(directory, Table({own, {0x0F02, net.host(), TestNet::freePort(), keys.publicKey}}),
                                 net.keys(0), options);

    const NodeSender sender(directory, 0x0F02);
    ASSERT_TRUE(sender.send(0x0F010042, 0x0F020300, 1));

    GatewayStatus status;
    EXPECT_TRUE(waitUntil([&] {
        status = fetchStatus(directory, testkit::generousBound).status.value_or(GatewayStatus{});
        return !status.links.empty() && status.links[0].accepted == 1;
    }));
    EXPECT_EQ(status.node, 0x0F01U);
    EXPECT_EQ(status.refused.sum(), 0U);
}

TEST_F(GatewayTest, TableWithAnotherKeyForTheOwnNodeIsRefused)
{
    const TestNet net(2);

    EXPECT_EQ(whyNot(net, 0, net.table(), net.keys(1)),
              "the table has another public key for this node, 0x0101, than the one that belongs to its secret key: " +
                  net.keys(1).publicKey.text());
}

TEST_F(GatewayTest, PortThatIsTakenIsToldWithItsNumber)
{
    TestNet net(2);
    net.start(0);
    std::vector<TableRow> rows = net.rows();
    std::swap(rows[0].port, rows[1].port);

    EXPECT_EQ(whyNot(net, 1, Table(rows), net.keys(1)), "cannot listen on tcp://" + net.host() + ":" +
                                                            std::to_string(net.rows()[0].port) +
                                                            ": Address already in use");
}

TEST_F(GatewayTest, NodeWithoutOthersIsServedToo)
{
    const TestNet net(1);

    EXPECT_EQ(whyNot(net, 0, net.table(), net.keys(0)), "");
}

} // namespace
} // namespace dorn::gateway::test
