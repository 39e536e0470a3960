// SPDX-License-Identifier: MIT
// The ends of what a gateway is set up with: the greatest table, IPv6, and a key that two boards have.
#include "NodeTest.hpp"
#include "TestNet.hpp"
#include "gateway/StatusServer.hpp"
#include "port/Descriptor.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <limits>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace dorn::gateway::test {
namespace {

constexpr TAaSysComCpid senderCpid = 0x0042;
constexpr TAaSysComCpid receiverCpid = 0x0300;

class GatewaySetUpTest : public testkit::NodeTest {};

/// Every number as great as it can be.
LinkStatus greatestLink(TAaSysComNid node)
{
    constexpr std::uint64_t most = ~std::uint64_t{0};
    constexpr Nanoseconds longest{std::numeric_limits<Nanoseconds::rep>::max()};
    LinkStatus link;
    link.node = node;
    link.host = std::string(maxHostLength, 'h');
    link.port = 65535;
    link.state = LinkState::Up;
    link.fault = LinkFault::WrongNode;
    link.inState = longest;
    link.roundTrip = longest;
    for (std::uint64_t* const count : {&link.ups, &link.peerEpoch, &link.accepted, &link.confirmed, &link.waiting,
                                       &link.waitingBytes, &link.received, &link.delivered, &link.pending}) {
        *count = most;
    }
    for (std::size_t reason = 0; reason < dropReasonCount; ++reason) {
        link.dropped[static_cast<DropReason>(reason)] = most;
    }
    return link;
}

TEST_F(GatewaySetUpTest, GreatestStatusThatThereCanBeIsTold)
{
    GatewayStatus greatest;
    greatest.node = 0xFFFF;
    greatest.pid = std::numeric_limits<pid_t>::max();
    greatest.age = Nanoseconds(std::numeric_limits<Nanoseconds::rep>::max());
    greatest.epoch = ~std::uint64_t{0};
    for (std::size_t reason = 0; reason < refusalReasonCount; ++reason) {
        greatest.refused[static_cast<RefusalReason>(reason)] = ~std::uint64_t{0};
    }
    for (std::size_t other = 1; other < maxTableRows; ++other) {
        greatest.links.push_back(greatestLink(0xFF00 + static_cast<TAaSysComNid>(other)));
    }
    const TestNet net(1);
    host::WaitSet waitSet;
    const StatusServer server(net.directory(0), waitSet, [&greatest] { return greatest; });
    std::atomic<bool> isOver{false};
    std::thread serving([&] {
        while (!isOver.load()) {
            waitSet.wait(host::noDeadline);
        }
    });

    const FetchedStatus fetched = fetchStatus(net.directory(0), testkit::generousBound);

    isOver.store(true);
    waitSet.ring();
    serving.join();
    ASSERT_TRUE(fetched.status);
    EXPECT_EQ(*fetched.status, greatest);
}

/// Somebody who takes connections and says nothing.
class SilentListener {
public:
    explicit SilentListener(const std::string& host) : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        inet_pton(AF_INET, host.c_str(), &address.sin_addr);
        socklen_t size = sizeof address;
        EXPECT_EQ(bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(listen(m_socket.get(), 16), 0);
        EXPECT_EQ(getsockname(m_socket.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
        m_port = ntohs(address.sin_port);
    }
    std::uint16_t port() const { return m_port; }
    /// Waits until somebody has connected.
    bool hasConnection() const
    {
        pollfd entry{m_socket.get(), POLLIN, 0};
        return ::poll(&entry, 1, static_cast<int>(testkit::generousBound.count())) == 1;
    }

private:
    host::Descriptor m_socket;
    std::uint16_t m_port = 0;
};

TEST_F(GatewaySetUpTest, AllNodesOfTheGreatestTableAreConnectedToAtOnce)
{
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    if (files.rlim_max < 1024 + maxTableRows * 8) {
        GTEST_SKIP() << "no more than " << files.rlim_max << " files may be open, too few for so many nodes";
    }
    files.rlim_cur = std::max<rlim_t>(files.rlim_cur, 1024); // for the listeners
    setrlimit(RLIMIT_NOFILE, &files);
    const TestNet net(1);
    std::vector<TableRow> rows = net.rows();
    std::vector<SilentListener> others;
    while (rows.size() < maxTableRows) {
        others.emplace_back(net.host());
        rows.push_back({nodeId(rows.size()), net.host(), others.back().port(), makeKeyPair().publicKey});
    }
    GatewayOptions options;
    options.listenAddress = net.host();
    options.attempt = testkit::generousBound;
    const RunningGateway gateway(net.directory(0), Table(rows), net.keys(0), options);

    const NodeSender toLast(net.directory(0), nodeId(maxTableRows - 1));
    ASSERT_TRUE(toLast.send(addressAt(0, senderCpid), addressAt(maxTableRows - 1, receiverCpid), 1));

    for (const SilentListener& other : others) {
        ASSERT_TRUE(other.hasConnection());
    }
    const auto isTried = [](const LinkStatus& link) {
        return link.state == LinkState::Connecting && link.fault == LinkFault::None;
    };
    EXPECT_TRUE(waitUntil([&] { return net.status(0).links.back().waiting == 1; }));
    const std::vector<LinkStatus> links = net.status(0).links;
    EXPECT_EQ(links.size(), maxTableRows - 1);
    EXPECT_TRUE(std::all_of(links.begin(), links.end(), isTried));
}

/// A port of an address that all processes of this machine share. @return 0 when there is no such address
std::uint16_t freePortOfSix(const in6_addr& host)
{
    const host::Descriptor probe(socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = host;
    socklen_t size = sizeof address;
    if (bind(probe.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        return 0;
    }
    return ntohs(address.sin6_port);
}

TEST_F(GatewaySetUpTest, GatewaysListenAndFindEachOtherAtIpv6Addresses)
{
    const TestNet net(2);
    std::vector<TableRow> rows = net.rows();
    for (TableRow& row : rows) {
        row.host = "::1";
        row.port = freePortOfSix(in6addr_loopback);
        if (row.port == 0) {
            GTEST_SKIP() << "this machine has no IPv6";
        }
    }
    GatewayOptions options = quickOptions();
    options.listenAddress = "::1";
    const RunningGateway first(net.directory(0), Table(rows), net.keys(0), options);
    const RunningGateway second(net.directory(1), Table(rows), net.keys(1), options);
    CpidReceiver atFirst(net.directory(0), receiverCpid);
    CpidReceiver atSecond(net.directory(1), receiverCpid);

    ASSERT_TRUE(NodeSender(net.directory(0), nodeId(1)).send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 7));
    ASSERT_TRUE(NodeSender(net.directory(1), nodeId(0)).send(addressAt(1, senderCpid), addressAt(0, receiverCpid), 8));

    EXPECT_EQ(atSecond.take().value_or(Arrived{}).number(), 7U);
    EXPECT_EQ(atFirst.take().value_or(Arrived{}).number(), 8U);
    EXPECT_EQ(net.link(0, 1).host, "::1");
    EXPECT_EQ(net.link(0, 1).port, rows[1].port);
}

std::size_t linesWith(const testkit::LogCapture& log, const std::string& text)
{
    const std::vector<std::string> lines = log.texts();
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [&text](const std::string& line) { return line.find(text) != std::string::npos; }));
}

TEST_F(GatewaySetUpTest, BoardWithTheCopiedKeyOfAnotherTakesItsPlaceAndHoldsUpNobodyElse)
{
    TestNet net(3);
    GatewayOptions options = quickOptions();
    options.greatestBackOff = std::chrono::milliseconds(10); // so that it asks often
    net.start(0, options);
    net.start(1);
    net.start(2);
    ASSERT_TRUE(net.waitForLinks());
    CpidReceiver receiver(net.directory(1), receiverCpid);
    std::vector<TableRow> rows = net.rows();
    rows[0].port = TestNet::freePort();
    options = quickOptions();
    options.listenAddress = net.host();
    const host::RunDirectory directory(net.runPath() + "/copy", static_cast<std::uint16_t>(nodeId(0)));
    directory.makeSubdirectory(host::socketFolder);
    std::optional<RunningGateway> copy;
    copy.emplace(directory, Table(rows), net.keys(0), options);

    // Who came last is believed, and the one before asks in vain, without filling the log.
    ASSERT_TRUE(waitUntil([&] { return net.status(1).refused[RefusalReason::Stale] >= 64; }));
    EXPECT_EQ(net.link(0, 1).fault, LinkFault::Refused);
    EXPECT_LE(linesWith(m_log, "No link to node 0x0102"), 1U);
    EXPECT_LE(linesWith(m_log, "Refused what the gateway of node 0x0101 sent: stale"), 2 * 8U); // by both others
    EXPECT_EQ(linesWith(m_log, "Node 0x0101 has been restarted"), 2U);                          // for both others
    const NodeSender ofFirst(net.directory(0), nodeId(1));
    const NodeSender ofCopy(directory, nodeId(1));
    const NodeSender ofThird(net.directory(2), nodeId(1));
    ASSERT_TRUE(ofFirst.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 1));
    ASSERT_TRUE(ofCopy.send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 2));
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 2U);
    ASSERT_TRUE(ofThird.send(addressAt(2, senderCpid), addressAt(1, receiverCpid), 3));
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 3U);
    EXPECT_EQ(net.link(2, 1).ups, 1U);
    EXPECT_EQ(net.link(1, 0).received, 1U);
    EXPECT_EQ(net.link(0, 1).waiting, 1U);

    // When the copy is gone the first one has to begin anew to be told from it.
    copy.reset();
    net.stop(0);
    net.start(0);
    ASSERT_TRUE(NodeSender(net.directory(0), nodeId(1)).send(addressAt(0, senderCpid), addressAt(1, receiverCpid), 4));
    EXPECT_EQ(receiver.take().value_or(Arrived{}).number(), 4U);
}

} // namespace
} // namespace dorn::gateway::test
