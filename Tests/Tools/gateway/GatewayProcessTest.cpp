// SPDX-License-Identifier: MIT
// Real services in processes of two nodes, with a gateway process for each.
#include "OpenFiles.hpp"
#include "TwoNodesTest.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <sstream>
#include <thread>

namespace dorn::gateway::test {
namespace {

using host::test::Answer;
using host::test::Order;
using testing::HasSubstr;
using testkit::Process;

constexpr TAaSysComNid unknownNode = 0x0F77;

class GatewayProcessTest : public TwoNodesTest {
protected:
    GatewayProcessTest() { m_otherDirectory.makeSubdirectory(host::socketFolder); }

    static LinkStatus linkOf(const host::RunDirectory& directory)
    {
        return fetchStatus(directory, testkit::generousBound).status.value_or(GatewayStatus{}).links.at(0);
    }
    static bool isUp(const host::RunDirectory& directory)
    {
        return waitUntil([&] { return linkOf(directory).state == LinkState::Up; });
    }
    /// Everything sent to a link is in the end confirmed or dropped for a reason.
    static void expectSum(const LinkStatus& link)
    {
        using enum DropReason;
        EXPECT_EQ(link.accepted, link.confirmed + link.waiting + link.dropped[QueueFull] + link.dropped[PeerRestarted] +
                                     link.dropped[Unconfirmed]);
        EXPECT_EQ(link.received, link.delivered + link.pending + link.dropped[NoReceiver] + link.dropped[ReceiverFull] +
                                     link.dropped[SenderRestarted] + link.dropped[Forged]);
    }

    const host::RunDirectory m_ownDirectory{m_node.runDirectory(), ownNode};
    const host::RunDirectory m_otherDirectory{m_node.runDirectory(), otherNode};
};

TEST_F(GatewayProcessTest, ServicesOfTwoNodesTalkByAddressAlone)
{
    const auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    const TAaSysComSicad peer = startPeer();

    ASSERT_EQ(tell(peer, {.order = Order::Register, .cpid = 0x0123}), EAaSysComStatus_Ok);

    TAaSysComSicad sender = 0;
    const std::optional<Answer> got = answer(sender);
    ASSERT_TRUE(got) << own->standardError() << other->standardError() << m_peer->standardError();
    EXPECT_EQ(got->first, 0x0123U);
    EXPECT_EQ(sender, peer);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(GatewayProcessTest, NodeInNoTableFailsAtOnceLikeAnUnknownCpid)
{
    const auto own = startReadyGateway(ownNode);

    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(sendEmptyTo(AaSysComSicadGet(0x0300, unknownNode)), EAaSysComStatus_NoRoute);
    EXPECT_LT(std::chrono::steady_clock::now() - before, host::backPressureTime);

    char line[160];
    std::snprintf(line, sizeof line,
                  "Warning 0x0 Message not sent: there is no way to the receiver's node (id=0x0055 "
                  "receiver=0x0F770300 sender=0x%08X)",
                  AaSysComSicadGet(m_cpid, ownNode));
    EXPECT_EQ(m_log.texts(), std::vector<std::string>{line});
}

TEST_F(GatewayProcessTest, WithoutAGatewayThereIsNoWay)
{
    EXPECT_EQ(sendEmptyTo(AaSysComSicadGet(0x0300, otherNode)), EAaSysComStatus_NoRoute);
}

TEST_F(GatewayProcessTest, KilledGatewayLeavesNoWayAndItsSuccessorIsFound)
{
    auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    const TAaSysComSicad peer = startPeer();
    TAaSysComSicad sender = 0;
    ASSERT_EQ(tell(peer, {.order = Order::Collected}), EAaSysComStatus_Ok);
    ASSERT_TRUE(answer(sender));

    own->signal(SIGKILL);
    own->waitForEnd();
    EXPECT_EQ(tell(peer, {.order = Order::Collected}), EAaSysComStatus_NoRoute);

    own = startReadyGateway(ownNode);
    ASSERT_EQ(tell(peer, {.order = Order::Register, .cpid = 0x0124}), EAaSysComStatus_Ok);
    const std::optional<Answer> got = answer(sender);
    ASSERT_TRUE(got) << own->standardError() << other->standardError();
    EXPECT_EQ(got->first, 0x0124U);
}

TEST_F(GatewayProcessTest, GatewayKilledInTheMiddleOfABurstLeavesCountsThatAddUp)
{
    const auto own = startReadyGateway(ownNode);
    auto other = startReadyGateway(otherNode);
    CpidReceiver receiver(m_otherDirectory, 0x0300);
    const NodeSender sender(m_ownDirectory, otherNode);
    constexpr std::uint32_t count = 15000;
    constexpr std::uint32_t ahead = 1000; // so that the gateway delivers at once what it receives
    std::atomic<std::uint32_t> end{ahead};
    std::thread bursts([&] {
        for (std::uint32_t number = 0; number < count; ++number) {
            EXPECT_TRUE(number < end || waitUntil([&] { return number < end; }));
            EXPECT_TRUE(sender.send(AaSysComSicadGet(1, ownNode), AaSysComSicadGet(0x0300, otherNode), number, 100));
        }
    });
    std::vector<std::uint32_t> numbers;
    const auto take = [&](std::chrono::milliseconds patience) {
        const std::optional<Arrived> one = receiver.take(patience);
        if (one) {
            numbers.push_back(one->number());
        }
        return one.has_value();
    };
    while (numbers.size() < 5000 && take(testkit::generousBound)) {
        end = static_cast<std::uint32_t>(numbers.size()) + ahead;
    }
    other->signal(SIGKILL);
    other->waitForEnd();
    while (take(std::chrono::milliseconds(0))) {
    }
    const std::size_t ofFirstLife = numbers.size();
    end = count;
    other = startReadyGateway(otherNode);
    bursts.join();

    EXPECT_TRUE(waitUntil([&] {
        take(std::chrono::milliseconds(0));
        const LinkStatus link = linkOf(m_ownDirectory);
        return link.accepted == count && link.waiting == 0;
    }));
    while (numbers.size() < ofFirstLife + linkOf(m_otherDirectory).received && take(testkit::generousBound)) {
    }
    using enum DropReason;
    const LinkStatus link = linkOf(m_ownDirectory);
    const LinkStatus opposite = linkOf(m_otherDirectory);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end(), std::less_equal<>())); // none twice
    EXPECT_EQ(link.accepted,
              link.confirmed + link.dropped[QueueFull] + link.dropped[PeerRestarted] + link.dropped[Unconfirmed]);
    EXPECT_GE(numbers.size(), link.confirmed);
    EXPECT_LE(numbers.size(), link.confirmed + link.dropped[Unconfirmed]);
    EXPECT_EQ(opposite.delivered, opposite.received);
    EXPECT_EQ(opposite.dropped.sum(), 0U);
    EXPECT_EQ(numbers.size() - ofFirstLife, opposite.delivered);
}

/// Sends to another node as fast as it is let, and notes how long a send took at most.
struct TimedSends {
    std::uint32_t accepted = 0;
    std::int32_t last = EAaSysComStatus_Ok;
    Nanoseconds longest{0};

    /// Sends numbers until @p count have been accepted, or one has not.
    void run(TAaSysComSicad receiver, std::uint32_t count)
    {
        for (; accepted < count && last == EAaSysComStatus_Ok; accepted += last == EAaSysComStatus_Ok ? 1 : 0) {
            void* message = AaSysComMsgCreate(0x55, sizeof accepted, receiver);
            std::memcpy(AaSysComMsgGetPayload(message), &accepted, sizeof accepted);
            const Nanoseconds before = host::Clock::get().monotonic();
            last = AaSysComMsgSend(&message);
            longest = std::max(longest, host::Clock::get().monotonic() - before);
        }
    }
};

TEST_F(GatewayProcessTest, ServiceNeverWaitsForAGatewayThatHangsOnTheOtherNode)
{
    const auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    ASSERT_TRUE(isUp(m_ownDirectory));
    other->signal(SIGSTOP);
    constexpr std::uint32_t count = 80000; // more than the queue has room for

    TimedSends sends;
    sends.run(AaSysComSicadGet(0x0300, otherNode), count);

    EXPECT_EQ(sends.accepted, count);
    EXPECT_LT(sends.longest, host::backPressureTime);
    ASSERT_TRUE(waitUntil([this] { return linkOf(m_ownDirectory).accepted == count; }));
    const LinkStatus full = linkOf(m_ownDirectory);
    EXPECT_EQ(full.waiting, 65536U);
    EXPECT_EQ(full.dropped[DropReason::QueueFull], count - 65536);

    other->signal(SIGCONT);
    ASSERT_TRUE(waitUntil([this] { return linkOf(m_ownDirectory).waiting == 0; }));
    EXPECT_EQ(linkOf(m_ownDirectory).confirmed, 65536U);
    EXPECT_EQ(linkOf(m_otherDirectory).received, 65536U);
    EXPECT_EQ(linkOf(m_otherDirectory).dropped[DropReason::NoReceiver], 65536U);
    expectSum(linkOf(m_ownDirectory));
    expectSum(linkOf(m_otherDirectory));
}

TEST_F(GatewayProcessTest, ServiceWaitsForItsOwnGatewayThatHangsNoLongerThanForAnyReceiver)
{
    const auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    ASSERT_TRUE(isUp(m_ownDirectory));
    CpidReceiver receiver(m_otherDirectory, 0x0300);
    own->signal(SIGSTOP);

    TimedSends sends;
    sends.run(AaSysComSicadGet(0x0300, otherNode), 1000000);
    EXPECT_EQ(sends.last, EAaSysComStatus_QueueFull);
    EXPECT_LT(sends.longest, 2 * host::backPressureTime);
    const Nanoseconds before = host::Clock::get().monotonic();
    EXPECT_EQ(sendEmptyTo(AaSysComSicadGet(0x0300, unknownNode)), EAaSysComStatus_NoRoute);
    EXPECT_LT(host::Clock::get().monotonic() - before, host::backPressureTime);

    own->signal(SIGCONT);
    for (std::uint32_t number = 0; number < sends.accepted; ++number) {
        const std::optional<Arrived> one = receiver.take();
        ASSERT_TRUE(one) << number;
        ASSERT_EQ(one->number(), number);
    }
    ASSERT_TRUE(waitUntil([&] { return linkOf(m_ownDirectory).confirmed == sends.accepted; }));
    EXPECT_EQ(linkOf(m_ownDirectory).accepted, sends.accepted);
    EXPECT_EQ(linkOf(m_otherDirectory).delivered, sends.accepted);
    EXPECT_EQ(linkOf(m_otherDirectory).received, sends.accepted);
}

TEST_F(GatewayProcessTest, SendersGatewayKilledInTheMiddleOfABurstRepeatsNothing)
{
    auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    CpidReceiver receiver(m_otherDirectory, 0x0300);
    const TAaSysComSicad from = AaSysComSicadGet(1, ownNode);
    const TAaSysComSicad to = AaSysComSicadGet(0x0300, otherNode);
    std::atomic<std::uint32_t> sentInFirstLife{0};
    std::thread burst([&, sender = std::make_unique<NodeSender>(m_ownDirectory, otherNode)] {
        while (sender->send(from, to, sentInFirstLife, 100)) { // until nobody takes it any more
            ++sentInFirstLife;
        }
    });
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t count = 0; count < 2000; ++count) {
        numbers.push_back(receiver.take().value_or(Arrived{}).number());
    }
    own->signal(SIGKILL);
    own->waitForEnd();
    burst.join();

    own = startReadyGateway(ownNode);
    const NodeSender sender(m_ownDirectory, otherNode);
    const std::uint32_t first = sentInFirstLife + 1000;
    for (std::uint32_t number = first; number < first + 100; ++number) {
        ASSERT_TRUE(sender.send(from, to, number, 100));
    }
    while (numbers.back() != first + 99) {
        const std::optional<Arrived> one = receiver.take();
        ASSERT_TRUE(one);
        numbers.push_back(one->number());
    }

    // A beginning of the first burst, and all of the second.
    ASSERT_GE(numbers.size(), 2100U);
    const std::size_t ofFirst = numbers.size() - 100;
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        ASSERT_EQ(numbers[index], index < ofFirst ? index : first + index - ofFirst);
    }
    ASSERT_TRUE(waitUntil([this] { return linkOf(m_ownDirectory).waiting == 0; }));
    const LinkStatus opposite = linkOf(m_otherDirectory);
    EXPECT_LE(ofFirst, sentInFirstLife);
    EXPECT_EQ(linkOf(m_ownDirectory).confirmed, 100U);
    EXPECT_EQ(opposite.delivered, numbers.size());
    expectSum(opposite);
}

TEST_F(GatewayProcessTest, ServiceThatReadsLateBelievesTheLastEightOfItsGateways)
{
    const auto other = startReadyGateway(otherNode);
    const NodeSender sender(m_otherDirectory, ownNode);
    constexpr std::uint32_t lives = 10;
    std::vector<pid_t> gateways;
    for (std::uint32_t life = 0; life < lives; ++life) {
        const auto own = startReadyGateway(ownNode);
        ASSERT_TRUE(waitUntil([&] {
            return linkOf(m_otherDirectory).ups == life + 1 && linkOf(m_otherDirectory).state == LinkState::Up;
        }));
        ASSERT_TRUE(sender.send(AaSysComSicadGet(1, otherNode), AaSysComSicadGet(m_cpid, ownNode), life));
        ASSERT_TRUE(waitUntil([this] { return linkOf(m_ownDirectory).delivered == 1; }));
        gateways.push_back(own->pid());
    }
    m_log.clear();

    std::vector<std::uint32_t> believed;
    while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
        std::memcpy(&believed.emplace_back(), AaSysComMsgGetPayload(message), sizeof believed.back());
        AaSysComMsgDestroy(&message);
    }

    EXPECT_THAT(believed, testing::UnorderedElementsAre(2, 3, 4, 5, 6, 7, 8, 9));
    const auto isForged = [](pid_t gateway) {
        return HasSubstr("Dropped what process " + std::to_string(gateway) + " sent to cpid");
    };
    EXPECT_THAT(m_log.texts(), testing::UnorderedElementsAre(isForged(gateways[0]), isForged(gateways[1])));
}

/// The soft limit of open files of a process.
std::string openFilesOf(pid_t process)
{
    std::ifstream limits("/proc/" + std::to_string(process) + "/limits");
    for (std::string line; std::getline(limits, line);) {
        std::istringstream words(line);
        std::string max;
        std::string open;
        std::string files;
        std::string soft;
        if (words >> max >> open >> files >> soft && open == "open" && files == "files") {
            return soft;
        }
    }
    return "";
}

TEST_F(GatewayProcessTest, LimitOfOpenFilesIsRaisedToWhatItNeedsAndNotFurther)
{
    const OpenFiles few(300);
    const auto own = startReadyGateway(ownNode);

    EXPECT_EQ(openFilesOf(own->pid()), std::to_string(std::min<rlim_t>(512 + 2 * 72, few.hard())));
}

TEST_F(GatewayProcessTest, QuestionThatCannotBeAskedIsToldFromNoGateway)
{
    const host::RunDirectory directory;
    EXPECT_EQ(fetchStatus(directory).holder, 0);
    const OpenFiles none(1);

    EXPECT_EQ(fetchStatus(directory).holder, -1);
}

TEST_F(GatewayProcessTest, SecondGatewayOfANodeIsRefused)
{
    const auto own = startReadyGateway(ownNode);
    const auto second = startGateway(ownNode);

    EXPECT_EQ(second->waitForEnd(), 1);
    EXPECT_EQ(second->standardError(),
              "process " + std::to_string(own->pid()) + " is the gateway of node 0x0F01 already\n");
}

TEST_F(GatewayProcessTest, GatewayEndsWhenItIsToldTo)
{
    const auto own = startReadyGateway(ownNode);

    own->signal(SIGTERM);

    EXPECT_EQ(own->waitForEnd(), 0);
    EXPECT_EQ(sendEmptyTo(AaSysComSicadGet(0x0300, otherNode)), EAaSysComStatus_NoRoute);
}

TEST_F(GatewayProcessTest, StatusTellsTheProcess)
{
    const host::RunDirectory directory;
    EXPECT_EQ(fetchStatus(directory).holder, 0);
    const auto own = startReadyGateway(ownNode);

    const FetchedStatus fetched = fetchStatus(directory, testkit::generousBound);

    EXPECT_EQ(fetched.holder, own->pid());
    ASSERT_TRUE(fetched.status);
    EXPECT_EQ(fetched.status->pid, own->pid());
    EXPECT_EQ(fetched.status->node, ownNode);
    ASSERT_EQ(fetched.status->links.size(), 1U);
    EXPECT_EQ(fetched.status->links[0].node, otherNode);
}

TEST_F(GatewayProcessTest, GatewayThatHangsIsToldFromOneThatIsGone)
{
    const host::RunDirectory directory;
    const auto own = startReadyGateway(ownNode);
    own->signal(SIGSTOP);

    const FetchedStatus fetched = fetchStatus(directory, std::chrono::milliseconds(50));

    EXPECT_EQ(fetched.holder, own->pid());
    EXPECT_FALSE(fetched.status);
    own->signal(SIGKILL);
    own->waitForEnd();
    EXPECT_EQ(fetchStatus(directory).holder, 0);
}

TEST_F(GatewayProcessTest, StreamFromTheOtherNodeKeepsItsOrder)
{
    const auto own = startReadyGateway(ownNode);
    const auto other = startReadyGateway(otherNode);
    const TAaSysComSicad peer = startPeer();
    constexpr std::uint32_t count = 5000;

    ASSERT_EQ(tell(peer, {.order = Order::Return, .size = 64, .count = count}), EAaSysComStatus_Ok);
    for (std::uint32_t number = 0; number < count; ++number) {
        ASSERT_EQ(sendEmptyTo(peer), EAaSysComStatus_Ok);
    }

    std::uint32_t expected = 0;
    for (; expected < count; ++expected) {
        void* message = AaSysComMsgReceive(generousTimeout);
        ASSERT_TRUE(message);
        ASSERT_EQ(AaSysComMsgGetSender(message), peer);
        std::uint32_t words[2] = {};
        std::memcpy(words, AaSysComMsgGetPayload(message), sizeof words);
        EXPECT_EQ(words[1], expected);
        AaSysComMsgDestroy(&message);
    }
}

/// The libraries that the dynamic section of @p program names.
std::string neededBy(const char* program)
{
    Process readelf(DORN_READELF, {"-d", program});
    EXPECT_EQ(readelf.waitForEnd(), 0) << readelf.standardError();
    return readelf.standardOutput();
}

TEST_F(GatewayProcessTest, ServicesLinkNoneOfIt)
{
    EXPECT_THAT(neededBy(DORN_GATEWAY_PROGRAM), HasSubstr("libzmq"));
    EXPECT_THAT(neededBy(DORN_CLIMATE_SERVICE), testing::Not(HasSubstr("libzmq")));
    EXPECT_THAT(neededBy(DORN_CLIMATE_SERVICE), HasSubstr("libc.so"));
}

} // namespace
} // namespace dorn::gateway::test
