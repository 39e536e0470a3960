// SPDX-License-Identifier: MIT
#include "Pattern.hpp"
#include "PeerProcess.hpp"
#include "RawSender.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "syscom/Post.hpp"

#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <list>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace dorn::host::test {
namespace {

using testkit::TestEu;
using testkit::TestNode;

constexpr TAaSysComCpid cpid = 0x0300;

/// Lets the process open no more descriptors while it lives.
class NoDescriptors {
public:
    /// Below the first free one; what is closed meanwhile can be opened again.
    NoDescriptors() : NoDescriptors(firstFree()) {}
    /// @param limit one so low that what is closed meanwhile cannot be opened again either
    explicit NoDescriptors(rlim_t limit)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = limit;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    static rlim_t firstFree()
    {
        const int next = dup(STDERR_FILENO);
        close(next);
        return static_cast<rlim_t>(next);
    }

    rlimit m_before{};
};

std::chrono::nanoseconds cpuTime()
{
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

std::size_t descriptors()
{
    const auto entries = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class DescriptorsTest : public SysComTest {
protected:
    DescriptorsTest() { AaSysComUserRegister(cpid, AaProEuCurrent()); }
};

TEST_F(DescriptorsTest, RefusedConnectionIsLoggedAndWhatItCarriedArrives)
{
    const RawSender sender(m_node.nodeDirectory(), cpid);
    sender.send(frameOf(goodHeader(addressOf(cpid))));
    {
        const NoDescriptors none;
        EXPECT_EQ(takeId(AA_NO_WAIT), 0x55U);
        EXPECT_FALSE(sender.send(frameOf(goodHeader(addressOf(cpid))))); // its process learns of it
    }

    EXPECT_EQ(m_log.texts(), std::vector<std::string>{"Error 0x0 Refused a connection to cpid 0x0300: descriptors "
                                                      "have run out (1 so far)"});
}

TEST_F(DescriptorsTest, RefusedConnectionsAreLoggedAtPowersOfTwo)
{
    std::list<RawSender> senders;
    for (int count = 0; count < 20; ++count) {
        senders.emplace_back(m_node.nodeDirectory(), cpid);
    }
    const NoDescriptors none;
    EXPECT_EQ(takeId(AA_NO_WAIT), 0U);

    EXPECT_EQ(m_log.texts().size(), 5U);
    EXPECT_EQ(m_log.count("Error 0x0 Refused a connection to cpid 0x0300: descriptors have run out (16 so far)"), 1U);
}

/// Another thread may take what was to be the spare descriptor.
TEST_F(DescriptorsTest, ConnectionThatCannotEvenBeRefusedKeepsNobodyBusy)
{
    const RawSender sender(m_node.nodeDirectory(), cpid);
    sender.send(frameOf(goodHeader(addressOf(cpid))));
    {
        const NoDescriptors none(STDERR_FILENO + 1);
        const auto before = cpuTime();
        EXPECT_EQ(takeId(200000), 0U);
        EXPECT_LT(cpuTime() - before, std::chrono::milliseconds(100));
    }

    EXPECT_EQ(takeId(generousTimeout), 0x55U);
}

TEST_F(DescriptorsTest, MessagesComeWhileAConnectionCannotEvenBeRefused)
{
    const RawSender sender(m_node.nodeDirectory(), cpid);
    const NoDescriptors none(STDERR_FILENO + 1);
    EXPECT_EQ(takeId(AA_NO_WAIT), 0U);
    const TAaSysComSicad own = address();
    const TestEu local([own] { sendEmpty(1, own); });

    EXPECT_EQ(takeId(generousTimeout), 1U);
}

TEST_F(DescriptorsTest, ConnectionIsTakenWhenThereAreDescriptorsAgain)
{
    PeerProcess peer;
    ASSERT_EQ(sendEmpty(1, peer.address()), EAaSysComStatus_Ok); // the way there is open
    {
        const NoDescriptors none;
        peer.tell({.order = Order::Send, .cpid = cpid, .count = 5});
        for (int count = 0; count < 5; ++count) {
            EXPECT_EQ(takeId(generousTimeout, {patternId}), patternId);
        }
    }
    EXPECT_EQ(peer.answer().first, 5U);

    EXPECT_EQ(peer.ask({.order = Order::Send, .cpid = cpid, .count = 5}).first, 5U);

    for (int count = 0; count < 5; ++count) {
        EXPECT_EQ(takeId(generousTimeout, {patternId}), patternId);
    }
}

TEST_F(DescriptorsTest, RegistrationFailsWithoutDescriptors)
{
    {
        const NoDescriptors none;
        EXPECT_EQ(AaSysComUserRegister(0x0301, AaProEuCurrent()), 0);
        EXPECT_EQ(AaSysComUserRegister(0, AaProEuCurrent()), 0);
    }

    EXPECT_EQ(m_log.texts().size(), 2U);
    EXPECT_EQ(m_log.texts().front(), "Error 0x0 cpid 0x0301 cannot be made reachable: Too many open files");
    EXPECT_EQ(AaSysComUserRegister(0x0301, AaProEuCurrent()), 0x0301);
}

TEST_F(DescriptorsTest, SendFailsWithoutDescriptors)
{
    PeerProcess peer;
    peer.ask({.order = Order::RegisterInEu, .cpid = 0x0302});
    {
        const NoDescriptors none;
        EXPECT_EQ(sendEmpty(1, addressOf(0x0302)), EAaSysComStatus_NoResources);
    }

    EXPECT_EQ(m_log.texts(), std::vector<std::string>{[&] {
                  char text[160];
                  std::snprintf(text, sizeof text,
                                "Warning 0x0 Message not sent: resources ran out (id=0x0001 receiver=0x0F010302 "
                                "sender=0x%08X)",
                                address());
                  return std::string(text);
              }()});
    EXPECT_EQ(sendEmpty(1, addressOf(0x0302)), EAaSysComStatus_Ok);
}

TEST_F(DescriptorsTest, EuReceivesAlthoughThereIsNoDescriptorToSleepOn)
{
    std::atomic<TAaProEuId> eu{0};
    std::atomic<bool> mayReceive{false};
    TAaSysComMsgId taken = 0;
    std::thread receiver([&] {
        eu.store(AaProEuCurrent());
        eu.notify_all();
        mayReceive.wait(false);
        EXPECT_EQ(AaSysComMsgReceive(1000), nullptr);
        AaSysComEuWakeUp(AaProEuCurrent());
        EXPECT_EQ(AaSysComMsgReceive(AA_WAIT_FOREVER), nullptr);
        mayReceive.store(false);
        mayReceive.notify_all();
        taken = takeId(AA_WAIT_FOREVER);
    });
    eu.wait(0);
    const NoDescriptors none;
    mayReceive.store(true);
    mayReceive.notify_all();
    mayReceive.wait(true);
    std::unique_ptr<Message, MessageDeleter> message(Message::create(7, 0, 0, 0));
    EXPECT_EQ(postToEu(message, eu.load()), EAaSysComStatus_Ok);

    receiver.join();
    EXPECT_EQ(taken, 7U);
}

TEST(DescriptorLeakTest, ClosingTheNodeLeavesNoDescriptorBehind)
{
    const auto useNode = [] {
        const TestNode node;
        const TAaSysComCpid own = AaSysComUserRegister(0, AaProEuCurrent());
        PeerProcess peer;
        peer.ask({.order = Order::RegisterInEu, .cpid = cpid});
        sendEmpty(1, addressOf(cpid));
        peer.ask({.order = Order::Send, .cpid = own, .count = 3});
        emptyQueue();
    };
    useNode(); // what a thread keeps for itself
    const std::size_t before = descriptors();

    for (int round = 0; round < 3; ++round) {
        useNode();
    }

    EXPECT_EQ(descriptors(), before);
}

TEST(DescriptorLeakTest, EuLeavesNoDescriptorBehindThatTheNextDoesNotUse)
{
    const TestNode node;
    const auto useEu = [] {
        TestEu eu([] {
            AaSysComUserRegister(cpid, AaProEuCurrent());
            AaSysComMsgReceive(1);
        });
        eu.wait();
    };
    for (int round = 0; round < 100; ++round) {
        useEu();
    }
    const std::size_t before = descriptors();

    for (int round = 0; round < 100; ++round) {
        useEu();
    }

    EXPECT_EQ(descriptors(), before);
}

} // namespace
} // namespace dorn::host::test
