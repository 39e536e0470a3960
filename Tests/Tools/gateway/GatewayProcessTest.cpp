// SPDX-License-Identifier: MIT
// Real services in processes of two nodes, with a gateway process for each.
#include "TwoNodesTest.hpp"
#include "syscom/Post.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/resource.h>
#include <thread>

namespace dorn::gateway::test {
namespace {

using host::test::Answer;
using host::test::Order;
using testing::HasSubstr;
using testkit::Process;

constexpr TAaSysComNid unknownNode = 0x0F77;

class GatewayProcessTest : public TwoNodesTest {};

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
    const host::RunDirectory ownDirectory(m_node.runDirectory(), ownNode);
    const host::RunDirectory otherDirectory(m_node.runDirectory(), otherNode);
    otherDirectory.makeSubdirectory(host::socketFolder);
    const auto own = startReadyGateway(ownNode);
    auto other = startReadyGateway(otherNode);
    CpidReceiver receiver(otherDirectory, 0x0300);
    const NodeSender sender(ownDirectory, otherNode);
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

    const auto linkOf = [](const host::RunDirectory& directory) {
        return fetchStatus(directory, testkit::generousBound).status.value_or(GatewayStatus{}).links.at(0);
    };
    EXPECT_TRUE(waitUntil([&] {
        take(std::chrono::milliseconds(0));
        const LinkStatus link = linkOf(ownDirectory);
        return link.accepted == count && link.waiting == 0;
    }));
    while (numbers.size() < ofFirstLife + linkOf(otherDirectory).received && take(testkit::generousBound)) {
    }
    using enum DropReason;
    const LinkStatus link = linkOf(ownDirectory);
    const LinkStatus opposite = linkOf(otherDirectory);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end(), std::less_equal<>())); // none twice
    EXPECT_EQ(link.accepted,
              link.confirmed + link.dropped[QueueFull] + link.dropped[PeerRestarted] + link.dropped[Unconfirmed]);
    EXPECT_GE(numbers.size(), link.confirmed);
    EXPECT_LE(numbers.size(), link.confirmed + link.dropped[Unconfirmed]);
    EXPECT_EQ(opposite.delivered, opposite.received);
    EXPECT_EQ(opposite.dropped.sum(), 0U);
    EXPECT_EQ(numbers.size() - ofFirstLife, opposite.delivered);
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

/// The limit of open files of this process and those that it starts while it lives.
class OpenFiles {
public:
    explicit OpenFiles(rlim_t soft)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit limit{soft, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~OpenFiles() { setrlimit(RLIMIT_NOFILE, &m_before); }
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;
    rlim_t hard() const { return m_before.rlim_max; }

private:
    rlimit m_before{};
};

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
