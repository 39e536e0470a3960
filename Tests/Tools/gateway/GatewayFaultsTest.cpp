// SPDX-License-Identifier: MIT
#include "CutProxy.hpp"
#include "NodeTest.hpp"
#include "RawPeer.hpp"
#include "TestNet.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <gmock/gmock.h>

namespace dorn::gateway::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;

/// Everything sent to a link is in the end confirmed or dropped for a reason.
void expectSum(const LinkStatus& link)
{
    using enum DropReason;
    EXPECT_EQ(link.accepted, link.confirmed + link.waiting + link.dropped[QueueFull] + link.dropped[PeerRestarted] +
                                 link.dropped[Unconfirmed]);
    EXPECT_EQ(link.received, link.delivered + link.pending + link.dropped[NoReceiver] + link.dropped[ReceiverFull] +
                                 link.dropped[SenderRestarted] + link.dropped[Forged]);
}

std::vector<std::uint32_t> numbersOf(const std::vector<Arrived>& all)
{
    std::vector<std::uint32_t> numbers;
    for (const Arrived& one : all) {
        numbers.push_back(one.number());
    }
    return numbers;
}

std::vector<std::uint32_t> countingTo(std::uint32_t count)
{
    std::vector<std::uint32_t> numbers(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        numbers[index] = index;
    }
    return numbers;
}

/// Two nodes; the link from the first to the second goes through a proxy.
class GatewayFaultsTest : public testkit::NodeTest {
protected:
    GatewayFaultsTest()
    {
        const std::uint16_t port = m_net.freePort();
        m_route = m_proxy.add(port, m_net.rows()[1].port);
        m_net.seenBy(0, 1).port = port;
    }

    bool send(const NodeSender& sender, std::uint32_t number, std::size_t size = 16) const
    {
        return sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number, size);
    }
    void sendAll(const NodeSender& sender, std::uint32_t first, std::uint32_t count, std::size_t size = 16) const
    {
        for (std::uint32_t number = first; number < first + count; ++number) {
            ASSERT_TRUE(send(sender, number, size));
        }
    }

    TestNet m_net{2};
    CutProxy m_proxy{m_net.host()};
    std::size_t m_route = 0;
};

TEST_F(GatewayFaultsTest, LinkCutInTheMiddleOfABurstLosesAndRepeatsNothing)
{
    m_net.startAll();
    ASSERT_TRUE(m_net.waitForLinks());
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    constexpr std::uint32_t count = 40000;
    constexpr std::uint32_t ahead = 4000; // so that there is something on its way whenever the link is cut
    std::atomic<std::uint32_t> taken{0};
    std::thread bursts([&] {
        for (std::uint32_t number = 0; number < count; ++number) {
            EXPECT_TRUE(number < taken + ahead || waitUntil([&] { return number < taken + ahead; }));
            EXPECT_TRUE(send(sender, number, 100));
        }
    });
    std::vector<Arrived> all;
    const auto takeUpTo = [&](std::uint32_t end) {
        while (all.size() < end) {
            std::optional<Arrived> one = receiver.take();
            if (!one) {
                taken = count; // so that the bursts end
                return false;
            }
            all.push_back(std::move(*one));
            ++taken;
        }
        return true;
    };
    for (std::uint32_t cuts = 1; cuts <= 5 && takeUpTo(cuts * count / 8); ++cuts) {
        m_proxy.cut(m_route);
        EXPECT_TRUE(waitUntil([&] { return m_net.link(0, 1).state != LinkState::Up; }));
        m_proxy.restore(m_route);
        EXPECT_TRUE(waitUntil([&] { return m_net.link(0, 1).ups == cuts + 1; }));
    }
    takeUpTo(count);
    bursts.join();

    EXPECT_EQ(numbersOf(all), countingTo(count));
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    EXPECT_FALSE(receiver.take(0ms)); // what has been delivered is there
    const LinkStatus link = m_net.link(0, 1);
    EXPECT_EQ(link.accepted, count);
    EXPECT_EQ(link.confirmed, count);
    EXPECT_EQ(link.ups, 6U);
    EXPECT_EQ(link.fault, LinkFault::Cut);
    EXPECT_EQ(m_net.link(1, 0).received, count);
    EXPECT_EQ(m_net.link(1, 0).delivered, count);
    expectSum(link);
    expectSum(m_net.link(1, 0));
}

TEST_F(GatewayFaultsTest, ConnectionThatIsCutInTheHandshakeIsNotBlamedOnKeys)
{
    m_proxy.cut(m_route);
    m_net.startAll();
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).fault != LinkFault::None; }));
    ASSERT_TRUE(waitUntil([&] { return m_proxy.accepted(m_route) >= 6; }));
    EXPECT_NE(m_net.link(0, 1).fault, LinkFault::KeyRefused);
    m_proxy.restore(m_route);

    ASSERT_TRUE(m_net.waitForLinks());
    EXPECT_THAT(m_log.texts(), testing::Not(testing::Contains(HasSubstr("key refused"))));
}

/// Connections that are established at an address and that the kernel asks from time to time whether they live.
std::size_t watchedConnectionsAt(const std::string& host, std::uint16_t port)
{
    in_addr address{};
    inet_pton(AF_INET, host.c_str(), &address);
    std::array<char, 16> local{};
    std::snprintf(local.data(), local.size(), "%08X:%04X", address.s_addr, port);
    std::size_t count = 0;
    for (const char* const table : {"/proc/self/net/tcp", "/proc/self/net/tcp6"}) {
        std::ifstream lines(table);
        for (std::string number, own, other, state, queues, timer, rest;
             lines >> number >> own >> other >> state >> queues >> timer;) {
            std::getline(lines, rest);
            count += own.ends_with(local.data()) && state == "01" && timer.starts_with("02:");
        }
    }
    return count;
}

TEST_F(GatewayFaultsTest, ConnectionOfAPeerThatIsGoneWithoutAWordIsFoundOut)
{
    m_net.start(0);
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());

    EXPECT_TRUE(waitUntil([&] { return watchedConnectionsAt(m_net.host(), m_net.rows()[1].port) == 1; }));
}

/// What a connection of ZeroMQ begins with: signature, version, mechanism, and nothing more in what is left.
std::array<char, 64> zmqGreeting()
{
    std::array<char, 64> greeting{};
    const std::string_view mechanism = "CURVE";
    greeting[0] = '\xFF';
    greeting[9] = '\x7F';
    greeting[10] = 3;
    std::copy(mechanism.begin(), mechanism.end(), greeting.begin() + 12);
    return greeting;
}

TEST_F(GatewayFaultsTest, ConnectionsThatStopInTheMiddleOfTheHandshakeAreEndedAndHoldUpNobody)
{
    m_net.startAll();
    ASSERT_TRUE(m_net.waitForLinks());
    constexpr std::uint64_t count = 200;
    std::vector<host::Descriptor> halfOpen;
    const std::array<char, 64> greeting = zmqGreeting();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(m_net.rows()[1].port);
    inet_pton(AF_INET, m_net.host().c_str(), &address.sin_addr);
    for (std::uint64_t number = 0; number < count; ++number) {
        halfOpen.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const int connection = halfOpen.back().get();
        ASSERT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        const std::size_t part = number % (greeting.size() + 1); // some say nothing, some all of it
        ASSERT_EQ(::send(connection, greeting.data(), part, MSG_NOSIGNAL), static_cast<ssize_t>(part));
    }
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 0, 100);

    EXPECT_EQ(numbersOf(receiver.takeAll(100)), countingTo(100));
    EXPECT_TRUE(waitUntil([&] { return m_net.status(1).refused[RefusalReason::Handshake] == count; }));
    EXPECT_EQ(m_net.link(0, 1).ups, 1U);
    EXPECT_EQ(m_net.link(0, 1).state, LinkState::Up);
}

TEST_F(GatewayFaultsTest, LinkThatSaysNothingIsCutAndComesBack)
{
    GatewayOptions options = quickOptions();
    options.silence = 300ms;
    m_net.start(0, options);
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));

    m_proxy.hold(m_route);
    sendAll(sender, 0, 100);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).state != LinkState::Up; }));
    EXPECT_EQ(m_net.link(0, 1).fault, LinkFault::Silent);
    m_proxy.restore(m_route);

    EXPECT_EQ(numbersOf(receiver.takeAll(100)), countingTo(100));
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    EXPECT_EQ(m_net.link(0, 1).confirmed, 100U);
}

TEST_F(GatewayFaultsTest, WhatDoesNotFitWhileTheLinkIsDownIsDroppedOldestFirst)
{
    GatewayOptions options = quickOptions();
    options.queueMessages = 1000;
    m_net.start(0, options);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 0, 2500);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).accepted == 2500; }));
    EXPECT_EQ(m_net.link(0, 1).waiting, 1000U);
    EXPECT_EQ(m_net.link(0, 1).dropped[DropReason::QueueFull], 1500U);

    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    m_net.start(1);

    const std::vector<std::uint32_t> numbers = numbersOf(receiver.takeAll(1000));
    ASSERT_EQ(numbers.size(), 1000U);
    EXPECT_EQ(numbers.front(), 1500U);
    EXPECT_EQ(numbers.back(), 2499U);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    expectSum(m_net.link(0, 1));
    const std::vector<std::string> lines = m_log.texts();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.find("is full") != std::string::npos; }),
              1);
}

TEST_F(GatewayFaultsTest, RestartedReceiversGatewayGetsNothingOfItsOldLife)
{
    m_net.startAll();
    ASSERT_TRUE(m_net.waitForLinks());
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 0, 100);
    EXPECT_EQ(numbersOf(receiver.takeAll(100)), countingTo(100));
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    const std::uint64_t before = m_net.status(1).epoch;

    m_net.stop(1);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).state != LinkState::Up; }));
    sendAll(sender, 100, 50);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).waiting == 50; }));
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());
    sendAll(sender, 150, 10);

    const std::vector<std::uint32_t> numbers = numbersOf(receiver.takeAll(10));
    ASSERT_EQ(numbers.size(), 10U);
    EXPECT_EQ(numbers.front(), 150U);
    EXPECT_EQ(numbers.back(), 159U);
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    EXPECT_EQ(m_net.link(1, 0).delivered, 10U); // nothing more
    const LinkStatus link = m_net.link(0, 1);
    EXPECT_NE(m_net.status(1).epoch, before);
    EXPECT_EQ(link.peerEpoch, m_net.status(1).epoch);
    EXPECT_EQ(link.confirmed, 110U);
    EXPECT_EQ(link.dropped[DropReason::PeerRestarted], 50U);
    expectSum(link);
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 Node 0x0102 has been restarted: dropped 50 messages for "
                                                 "its life before"));
}

TEST_F(GatewayFaultsTest, SenderNeverWaitsForAnotherNode)
{
    GatewayOptions options = quickOptions();
    options.queueMessages = 1000;
    m_net.start(0, options);
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());
    const NodeSender sender(m_net.directory(0), nodeId(1));
    m_proxy.hold(m_route);

    Nanoseconds longest{0};
    for (std::uint32_t number = 0; number < 5000; ++number) {
        const Nanoseconds before = host::Clock::get().monotonic();
        ASSERT_TRUE(send(sender, number, 1000));
        longest = std::max(longest, host::Clock::get().monotonic() - before);
    }

    EXPECT_LT(longest, host::backPressureTime);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).accepted == 5000; }));
    EXPECT_EQ(m_net.link(0, 1).waiting, 1000U);
    EXPECT_EQ(m_net.link(0, 1).dropped[DropReason::QueueFull], 4000U);
}

TEST_F(GatewayFaultsTest, RestartedSendersGatewayBeginsAnew)
{
    m_net.startAll();
    ASSERT_TRUE(m_net.waitForLinks());
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    {
        const NodeSender sender(m_net.directory(0), nodeId(1));
        sendAll(sender, 0, 100);
        EXPECT_EQ(receiver.takeAll(100).size(), 100U);
        ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
        m_proxy.cut(m_route);
        ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).state != LinkState::Up; }));
        sendAll(sender, 100, 100); // nobody gets these any more
        ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).waiting == 100; }));
        m_net.stop(0);
        EXPECT_FALSE(send(sender, 200));
    }
    m_proxy.restore(m_route);
    m_net.start(0);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 1000, 100);

    const std::vector<std::uint32_t> numbers = numbersOf(receiver.takeAll(100));
    ASSERT_EQ(numbers.size(), 100U);
    EXPECT_EQ(numbers.front(), 1000U);
    EXPECT_EQ(numbers.back(), 1099U);
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    EXPECT_EQ(m_net.link(1, 0).delivered, 200U); // nothing more
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 The gateway ends: 100 messages to node 0x0102 have not "
                                                 "been confirmed"));
    ASSERT_TRUE(waitUntil([&] { return m_net.link(1, 0).peerEpoch == m_net.status(0).epoch; }));
}

TEST_F(GatewayFaultsTest, ReceiverThatNeverReadsHasABoundedShareAndHoldsUpNobody)
{
    GatewayOptions options = quickOptions();
    options.receiverMessages = 500;
    m_net.start(0);
    m_net.start(1, options);
    ASSERT_TRUE(m_net.waitForLinks());
    CpidReceiver lazy(m_net.directory(1), receiverCpid);
    CpidReceiver busy(m_net.directory(1), receiverCpid + 1);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    constexpr std::uint32_t count = 6000;

    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_TRUE(send(sender, number, 2000));
        if (number % 100 == 0) {
            ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid + 1), number));
            ASSERT_TRUE(busy.take());
        }
    }
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    const LinkStatus link = m_net.link(1, 0);
    expectSum(link);
    EXPECT_EQ(link.pending, 500U);
    EXPECT_GT(link.dropped[DropReason::ReceiverFull], 1000U);
    const std::vector<std::string> lines = m_log.texts();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.find("does not read") != std::string::npos; }),
              1);

    // When it reads at last it gets the latest, in their order.
    const std::size_t expected = count - link.dropped[DropReason::ReceiverFull];
    const std::vector<std::uint32_t> numbers = numbersOf(lazy.takeAll(expected));
    ASSERT_EQ(numbers.size(), expected);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end(), std::less_equal<>()));
    EXPECT_EQ(numbers.back(), count - 1);
    EXPECT_TRUE(waitUntil([&] { return m_net.link(1, 0).pending == 0; }));
    expectSum(m_net.link(1, 0));
}

TEST_F(GatewayFaultsTest, MessageForACpidThatNobodyHoldsIsDroppedAndCounted)
{
    m_net.startAll();
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 0, 3);

    ASSERT_TRUE(waitUntil([&] { return m_net.link(1, 0).dropped[DropReason::NoReceiver] == 3; }));
    expectSum(m_net.link(1, 0));
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    sendAll(sender, 3, 1);
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 3U);
    EXPECT_THAT(m_log.texts(), testing::Contains(HasSubstr("Dropped what node 0x0101 sent to cpid 0x0300: nobody holds "
                                                           "it (id=0x0055 sender=0x01010042")));
}

TEST_F(GatewayFaultsTest, ReceiverThatComesBackIsFoundAgain)
{
    m_net.startAll();
    const NodeSender sender(m_net.directory(0), nodeId(1));
    for (std::uint32_t round = 0; round < 3; ++round) {
        CpidReceiver receiver(m_net.directory(1), receiverCpid);
        sendAll(sender, round, 1);
        EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), round);
    }
}

TEST_F(GatewayFaultsTest, LocalSenderIsCheckedAsBetweenProcesses)
{
    m_net.startAll();
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));

    EXPECT_TRUE(sender.sendBytes(std::vector<std::byte>(10)));
    EXPECT_TRUE(sender.send(addressAt(1, senderCpid), addressAt(1, receiverCpid), 1)); // in another node's name
    EXPECT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(0, receiverCpid), 2)); // not for that node
    EXPECT_TRUE(sender.send(0, addressAt(1, receiverCpid), 3));                        // in nobody's name
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 3U);

    const GatewayStatus status = m_net.status(0);
    EXPECT_EQ(status.refused[RefusalReason::LocalFrame], 3U);
    EXPECT_EQ(m_net.link(0, 1).accepted, 1U);
    const std::string process = std::to_string(getpid());
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 Dropped what process " + process +
                                                 " sent to node 0x0102: it is too short (id=0x0000 receiver=0x00000000 "
                                                 "sender=0x00000000, 10 bytes; 1 dropped so far)"));
    EXPECT_THAT(m_log.texts(),
                testing::Contains("Warning 0x0 Dropped what process " + process +
                                  " sent to node 0x0102: its sender is forged (id=0x0055 receiver=0x01020300 "
                                  "sender=0x01020042, 40 bytes; 2 dropped so far)"));
}

TEST_F(GatewayFaultsTest, UnknownKeyIsRefusedAndCounted)
{
    m_net.start(1);
    RawPeer stranger(m_net.rows()[1], makeKeyPair());
    stranger.send(wireBytes(Greeting{1, 1, 0x0101, 0x0102}));

    EXPECT_FALSE(stranger.isLetIn());
    EXPECT_GT(m_net.status(1).refused[RefusalReason::UnknownKey], 0U);
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 Refused a gateway at 127.0.0.1: its key is none of the "
                                                 "table's (1 so far)"));
}

TEST_F(GatewayFaultsTest, OwnKeyIsNoPeers)
{
    m_net.start(1);
    RawPeer mirror(m_net.rows()[1], m_net.keys(1));
    mirror.send(wireBytes(Greeting{1, 1, 0x0102, 0x0102}));

    EXPECT_FALSE(mirror.isLetIn());
    EXPECT_GT(m_net.status(1).refused[RefusalReason::UnknownKey], 0U);
}

TEST_F(GatewayFaultsTest, PeerThatDoesNotEncryptIsRefused)
{
    m_net.start(1);
    RawPeer plain(m_net.rows()[1], std::nullopt);
    plain.send(wireBytes(Greeting{1, 1, 0x0101, 0x0102}));

    EXPECT_TRUE(waitUntil([&] { return m_net.status(1).refused[RefusalReason::Handshake] > 0; }));
}

TEST_F(GatewayFaultsTest, LinkToAGatewayWithAnotherKeySaysSo)
{
    m_net.seenBy(0, 1).key = makeKeyPair().publicKey;
    m_net.startAll();

    EXPECT_TRUE(waitUntil([&] { return m_net.link(0, 1).fault == LinkFault::KeyRefused; }));
    EXPECT_NE(m_net.link(0, 1).state, LinkState::Up);
}

TEST_F(GatewayFaultsTest, OtherVersionIsRefusedWithTheOwn)
{
    m_net.start(1);
    RawPeer later(m_net.rows()[1], m_net.keys(0));
    WireBytes greeting = wireBytes(Greeting{1, 42, 0x0101, 0x0102});
    greeting[4] = std::byte{2};
    later.send(greeting);

    EXPECT_TRUE(later.isLetIn());
    const std::optional<Refusal> refusal = later.takeA<Refusal>();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->code, RefusalCode::Version);
    EXPECT_EQ(refusal->what, 42U);
    EXPECT_EQ(m_net.status(1).refused[RefusalReason::Version], 1U);
    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 Refused what the gateway of node 0x0101 sent: other "
                                                 "version (1 so far)"));
}

TEST_F(GatewayFaultsTest, GarbageIsRefusedAndTheConnectionLivesOn)
{
    m_net.start(1);
    RawPeer peer(m_net.rows()[1], m_net.keys(0));
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{8}, std::size_t{60000}}) {
        peer.send(WireBytes(size, std::byte{0xEE}));
    }

    EXPECT_TRUE(peer.greet(nodeId(0), nodeId(1)));
    EXPECT_EQ(m_net.status(1).refused[RefusalReason::Garbage], 4U);
}

TEST_F(GatewayFaultsTest, GarbageOfOneNodeDoesNotHideAnothers)
{
    TestNet net(3);
    net.start(1);
    RawPeer first(net.rows()[1], net.keys(0));
    for (int count = 0; count < 5; ++count) {
        first.send(WireBytes(100, std::byte{0xEE}));
    }
    ASSERT_TRUE(first.greet(nodeId(0), nodeId(1))); // all of it has been read
    RawPeer second(net.rows()[1], net.keys(2));
    second.send(WireBytes(100, std::byte{0xEE}));
    ASSERT_TRUE(second.greet(nodeId(2), nodeId(1)));

    EXPECT_EQ(net.status(1).refused[RefusalReason::Garbage], 6U);
    std::vector<std::string> lines = m_log.texts();
    std::erase_if(lines, [](const std::string& line) { return line.find("Refused what") == std::string::npos; });
    EXPECT_THAT(lines,
                testing::ElementsAre("Warning 0x0 Refused what the gateway of node 0x0101 sent: garbage (1 so far)",
                                     "Warning 0x0 Refused what the gateway of node 0x0101 sent: garbage (2 so far)",
                                     "Warning 0x0 Refused what the gateway of node 0x0101 sent: garbage (4 so far)",
                                     "Warning 0x0 Refused what the gateway of node 0x0103 sent: garbage (1 so far)"));
}

TEST_F(GatewayFaultsTest, BadMessagesToOneNodeDoNotHideThoseToAnother)
{
    TestNet net(3);
    net.start(0);
    const NodeSender first(net.directory(0), nodeId(1));
    const NodeSender second(net.directory(0), nodeId(2));
    for (int count = 0; count < 5; ++count) {
        ASSERT_TRUE(first.sendBytes(std::vector<std::byte>(10)));
    }
    ASSERT_TRUE(waitUntil([&net] { return net.status(0).refused[RefusalReason::LocalFrame] == 5; }));
    ASSERT_TRUE(second.sendBytes(std::vector<std::byte>(10)));
    ASSERT_TRUE(waitUntil([&net] { return net.status(0).refused[RefusalReason::LocalFrame] == 6; }));

    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 Dropped what process " + std::to_string(getpid()) +
                                                 " sent to node 0x0103: it is too short (id=0x0000 receiver=0x00000000 "
                                                 "sender=0x00000000, 10 bytes; 1 dropped so far)"));
}

TEST_F(GatewayFaultsTest, GreetingInAnotherNodesNameIsRefused)
{
    m_net.start(1);
    RawPeer peer(m_net.rows()[1], m_net.keys(0));
    peer.send(wireBytes(Greeting{1, 7, 0x0103, 0x0102}));
    const std::optional<Refusal> first = peer.takeA<Refusal>();
    peer.send(wireBytes(Greeting{1, 8, 0x0101, 0x0103}));
    const std::optional<Refusal> second = peer.takeA<Refusal>();

    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->code, RefusalCode::WrongNode);
    EXPECT_EQ(first->what, 7U);
    EXPECT_EQ(second->code, RefusalCode::WrongNode);
}

TEST_F(GatewayFaultsTest, MessagesWithForgedAddressesAreDroppedAndCounted)
{
    m_net.start(1);
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    RawPeer peer(m_net.rows()[1], m_net.keys(0));
    const std::optional<Welcome> welcome = peer.greet(nodeId(0), nodeId(1));
    ASSERT_TRUE(welcome);

    peer.sendParcel(welcome->session, 1, addressAt(1, senderCpid), addressAt(1, receiverCpid)); // the receiver's node
    peer.sendParcel(welcome->session, 2, addressAt(5, senderCpid), addressAt(1, receiverCpid)); // a third node
    peer.sendParcel(welcome->session, 3, addressAt(0, senderCpid), addressAt(5, receiverCpid)); // for a third node
    peer.sendParcel(welcome->session, 4, addressAt(0, senderCpid), addressAt(1, receiverCpid)); // good

    ASSERT_TRUE(receiver.take());
    const LinkStatus link = m_net.link(1, 0);
    EXPECT_FALSE(receiver.take(0ms)); // what has been delivered is there
    EXPECT_EQ(link.received, 4U);
    EXPECT_EQ(link.delivered, 1U);
    EXPECT_EQ(link.dropped[DropReason::Forged], 3U);
    expectSum(link);
}

TEST_F(GatewayFaultsTest, ParcelsOutsideASessionOrOutOfOrderAreRefused)
{
    m_net.start(1);
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    RawPeer peer(m_net.rows()[1], m_net.keys(0));
    const TAaSysComSicad from = addressAt(0, senderCpid);
    const TAaSysComSicad to = addressAt(1, receiverCpid);
    peer.sendParcel(4711, 1, from, to);
    EXPECT_EQ(peer.takeA<Refusal>().value_or(Refusal{}).what, 4711U);
    const std::uint64_t session = peer.greet(nodeId(0), nodeId(1)).value_or(Welcome{}).session;
    peer.sendParcel(session, 2, from, to);
    EXPECT_EQ(peer.takeA<Refusal>().value_or(Refusal{}).what, session);
    peer.sendParcel(session, 1, from, to);
    peer.sendParcel(session, 1, from, to); // once more
    peer.sendParcel(session, 2, from, to);

    EXPECT_EQ(receiver.takeAll(2).size(), 2U);
    const LinkStatus link = m_net.link(1, 0); // by now all that was sent before the last has been looked at
    EXPECT_FALSE(receiver.take(0ms));
    EXPECT_EQ(m_net.status(1).refused[RefusalReason::Stale], 2U);
    EXPECT_EQ(link.received, 2U);
    EXPECT_EQ(link.delivered, 2U);
}

TEST_F(GatewayFaultsTest, FloodOfGarbageHoldsUpNobodyAndDoesNotFloodTheLog)
{
    TestNet net(3);
    net.startAll();
    ASSERT_TRUE(net.waitForLinks());
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));
    RawPeer flooder(net.rows()[1], net.keys(2));
    constexpr std::uint64_t flood = 20000;

    std::thread flooding([&flooder] {
        for (std::uint64_t count = 0; count < flood; ++count) {
            flooder.send(WireBytes(100, std::byte{0xEE}));
        }
    });
    for (std::uint32_t number = 0; number < 1000; ++number) {
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number));
    }
    EXPECT_EQ(numbersOf(receiver.takeAll(1000)), countingTo(1000));
    flooding.join();

    EXPECT_TRUE(waitUntil([&] { return net.status(1).refused[RefusalReason::Garbage] == flood; }));
    const std::vector<std::string> lines = m_log.texts();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.find("garbage") != std::string::npos; }),
              15); // powers of two up to the flood
}

/// The smallest messages, as many as fit, to two cpids in turn: the most work that a connection can make.
TEST_F(GatewayFaultsTest, FloodForCpidsThatNobodyHoldsHoldsUpNobody)
{
    TestNet net(3);
    net.startAll();
    ASSERT_TRUE(net.waitForLinks());
    RawPeer flooder(net.rows()[1], net.keys(2));
    net.stop(2);
    const std::uint64_t session = flooder.greet(nodeId(2), nodeId(1)).value_or(Welcome{}).session;
    constexpr std::uint64_t parcels = 400;
    constexpr std::uint32_t inParcel = 4096;
    const std::array<TAaSysComSicad, 2> nobody{addressAt(1, 0x0F00), addressAt(1, 0x0F01)};
    for (std::uint64_t number = 1; number <= parcels; ++number) {
        flooder.sendMany(session, number, inParcel, addressAt(2, senderCpid), nobody);
    }

    Nanoseconds longest{0};
    std::uint64_t received = 0;
    while (received < parcels * inParcel) {
        const Nanoseconds before = host::Clock::get().monotonic();
        received = net.link(1, 2).received;
        longest = std::max(longest, host::Clock::get().monotonic() - before);
    }
    EXPECT_LT(longest, statusPatience);
    EXPECT_EQ(net.link(1, 2).dropped[DropReason::NoReceiver], parcels * inParcel);
    EXPECT_EQ(net.link(0, 1).ups, 1U);
    EXPECT_EQ(net.link(0, 1).state, LinkState::Up);
    expectSum(net.link(1, 2));
}

TEST_F(GatewayFaultsTest, WhatReceiversHaveNotReadIsToldAtTheEnd)
{
    m_net.startAll();
    const CpidReceiver lazy(m_net.directory(1), receiverCpid);
    const NodeSender sender(m_net.directory(0), nodeId(1));
    sendAll(sender, 0, 6000, 2000);
    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).accepted == 6000; }));
    ASSERT_TRUE(m_net.waitForConfirmed(0, 1));
    const std::uint64_t pending = m_net.link(1, 0).pending;
    EXPECT_GT(pending, 0U);

    m_net.stop(1);

    EXPECT_THAT(m_log.texts(), testing::Contains("Warning 0x0 The gateway ends: " + std::to_string(pending) +
                                                 " messages of node 0x0101 have not been read by their receivers"));
}

TEST_F(GatewayFaultsTest, WhatWaitsForAllNodesIsBoundedThoughMuchIsInFlight)
{
    GatewayOptions options = quickOptions();
    options.allQueuesBytes = std::size_t{256} << 10;
    m_net.start(0, options);
    m_net.start(1);
    ASSERT_TRUE(m_net.waitForLinks());
    const NodeSender sender(m_net.directory(0), nodeId(1));
    m_proxy.hold(m_route);

    sendAll(sender, 0, 1000, 1000);

    ASSERT_TRUE(waitUntil([&] { return m_net.link(0, 1).accepted == 1000; }));
    const LinkStatus link = m_net.link(0, 1);
    EXPECT_LE(link.waitingBytes, options.allQueuesBytes);
    EXPECT_GE(link.waitingBytes, options.allQueuesBytes - 2000);
    expectSum(link);

    // What was in flight comes first, and then the newest.
    CpidReceiver receiver(m_net.directory(1), receiverCpid);
    m_proxy.restore(m_route);
    const std::vector<std::uint32_t> numbers = numbersOf(receiver.takeAll(link.waiting));
    ASSERT_EQ(numbers.size(), link.waiting);
    EXPECT_EQ(numbers.front(), 0U);
    EXPECT_EQ(numbers.back(), 999U);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

TEST_F(GatewayFaultsTest, HostThatCannotBeResolvedHoldsUpNobody)
{
    TestNet net(3);
    net.seenBy(0, 2).host = "no-such-host.invalid";
    GatewayOptions options = quickOptions();
    options.lookUp = [](const std::string&) { return std::vector<std::string>(); };
    net.start(0, options);
    net.start(1);
    net.start(2);
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));
    const NodeSender toNobody(net.directory(0), nodeId(2));

    ASSERT_TRUE(toNobody.send(addressAt(0, senderCpid), addressAt(2, receiverCpid), 1));
    ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 2));

    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 2U);
    EXPECT_TRUE(waitUntil([&] { return net.link(0, 2).fault == LinkFault::HostUnknown; }));
    EXPECT_EQ(net.link(0, 2).waiting, 1U);
}

/// A wall clock that never shows twice the same year.
class JumpingClock final : public host::Clock {
public:
    Nanoseconds monotonic() const override { return m_real.monotonic(); }
    Nanoseconds wall() const override
    {
        const auto years = std::chrono::hours(8766) * (static_cast<int>(m_readings.fetch_add(1) * 7 % 20) - 10);
        return m_real.wall() + years;
    }
    void waitWhile(std::atomic<std::uint32_t>& word, std::uint32_t expected, host::Deadline until, bool shared) override
    {
        m_real.waitWhile(word, expected, until, shared);
    }
    int waitDescriptors(std::span<pollfd> entries, host::Deadline until) override
    {
        return m_real.waitDescriptors(entries, until);
    }

private:
    host::Clock& m_real{host::Clock::get()};
    mutable std::atomic<unsigned> m_readings{0};
    host::ClockScope m_scope{*this};
};

TEST(GatewayClockTest, StepsOfTheWallClockChangeNothing)
{
    const testkit::TestNode node;
    JumpingClock clock;
    TestNet net(2);
    net.startAll();
    ASSERT_TRUE(net.waitForLinks());
    CpidReceiver receiver(net.directory(1), receiverCpid);
    const NodeSender sender(net.directory(0), nodeId(1));
    for (std::uint32_t number = 0; number < 200; ++number) {
        clock.wall();
        ASSERT_TRUE(sender.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), number));
    }

    EXPECT_EQ(numbersOf(receiver.takeAll(200)), countingTo(200));
    ASSERT_TRUE(net.waitForConfirmed(0, 1));
    ASSERT_TRUE(waitUntil([&net] { return net.link(0, 1).roundTrip.has_value(); }));
    const LinkStatus link = net.link(0, 1);
    EXPECT_EQ(link.ups, 1U);
    EXPECT_LT(link.roundTrip, testkit::generousBound);
    EXPECT_LT(link.inState, testkit::generousBound);
}

TEST_F(GatewayFaultsTest, NamedHostIsFound)
{
    m_net.seenBy(0, 1).host = "board-b.example";
    GatewayOptions options = quickOptions();
    options.lookUp = [host = m_net.host()](const std::string& name) {
        EXPECT_EQ(name, "board-b.example");
        return std::vector<std::string>{"127.0.0.1", host}; // at the first one nobody listens
    };
    m_net.start(0, options);
    m_net.start(1);

    ASSERT_TRUE(m_net.waitForLinks());
    EXPECT_EQ(m_net.link(0, 1).fault, LinkFault::Unreachable);
}

} // namespace
} // namespace dorn::gateway::test
