// SPDX-License-Identifier: MIT
// What the users of a transport rely on, held against the one in use.
#include "port/Transport.hpp"

#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "config/ChildProcess.hpp"
#include "syscom/ActiveTransport.hpp"
#include "syscom/Message.hpp"
#include "syscom/WaitSet.hpp"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace dorn::host::test {
namespace {

using namespace std::chrono_literals;

constexpr TAaSysComCpid cpid = 0x0300;
constexpr Nanoseconds noPatience{0};

/// Keeps what arrives.
class Inbox : public FrameSink {
public:
    struct Frame {
        std::string bytes;
        bool isCut;
        pid_t sender;
        bool isGone;
    };

    bool hasRoom() const override { return isOpen; }
    void onFrame(std::span<const std::byte> frame, bool isCut, const Peer& peer) override
    {
        frames.push_back(
            {std::string(reinterpret_cast<const char*>(frame.data()), frame.size()), isCut, peer.pid(), peer.isGone()});
    }

    bool isOpen = true;
    std::vector<Frame> frames;
};

EAaSysComStatus sendText(Transport& transport, const std::string& text, Nanoseconds patience = noPatience)
{
    return transport.send(cpid, std::as_bytes(std::span(text.data(), text.size())), patience);
}

class TransportTest : public testkit::NodeTest {
protected:
    std::unique_ptr<Endpoint> open() { return transport().open(cpid, m_waitSet, m_inbox); }
    static Transport& transport() { return activeTransport(); }
    EAaSysComStatus send(const std::string& text, Nanoseconds patience = noPatience)
    {
        return sendText(transport(), text, patience);
    }

    /// Serves the endpoint until so many frames have arrived.
    bool serveUntil(std::size_t count)
    {
        const Deadline end = Clock::get().monotonic() + testkit::generousBound;
        while (m_inbox.frames.size() < count && Clock::get().monotonic() < end) {
            m_waitSet.wait(end);
        }
        return m_inbox.frames.size() >= count;
    }
    std::vector<std::string> texts() const
    {
        std::vector<std::string> all;
        for (const Inbox::Frame& frame : m_inbox.frames) {
            all.push_back(frame.bytes);
        }
        return all;
    }
    /// Sends until there is no more room. @return how many were taken.
    std::size_t fill()
    {
        std::size_t count = 0;
        const std::string big(10'000, 'x');
        while (send(big) == EAaSysComStatus_Ok) {
            ++count;
        }
        return count;
    }

    WaitSet m_waitSet;
    Inbox m_inbox;
};

TEST_F(TransportTest, NobodyReceivesWhereNoEndpointIs)
{
    EXPECT_EQ(send("x"), EAaSysComStatus_NoReceiver);
    EXPECT_EQ(send("x", 60s), EAaSysComStatus_NoReceiver);
}

TEST_F(TransportTest, FrameArrivesWholeWithTheProcessThatSentIt)
{
    const auto endpoint = open();
    ASSERT_TRUE(endpoint);
    ASSERT_EQ(send("hello"), EAaSysComStatus_Ok);

    ASSERT_TRUE(serveUntil(1));

    EXPECT_EQ(m_inbox.frames[0].bytes, "hello");
    EXPECT_FALSE(m_inbox.frames[0].isCut);
    EXPECT_EQ(m_inbox.frames[0].sender, getpid());
    EXPECT_FALSE(m_inbox.frames[0].isGone);
}

TEST_F(TransportTest, FramesOfAThreadKeepTheirOrderAndTheirBounds)
{
    const auto endpoint = open();
    std::vector<std::string> sent;
    for (int number = 0; number < 50; ++number) {
        sent.push_back(std::to_string(number));
        ASSERT_EQ(send(sent.back()), EAaSysComStatus_Ok);
    }

    ASSERT_TRUE(serveUntil(sent.size()));

    EXPECT_EQ(texts(), sent);
}

TEST_F(TransportTest, GreatestFrameIsNotCut)
{
    const auto endpoint = open();
    const std::string greatest(maxFrameSize, 'x');
    ASSERT_EQ(send(greatest), EAaSysComStatus_Ok);

    ASSERT_TRUE(serveUntil(1));

    EXPECT_EQ(m_inbox.frames[0].bytes, greatest);
    EXPECT_FALSE(m_inbox.frames[0].isCut);
}

TEST_F(TransportTest, LongerFrameIsReportedAsCut)
{
    const auto endpoint = open();
    ASSERT_EQ(send(std::string(maxFrameSize + 1, 'x')), EAaSysComStatus_Ok);

    ASSERT_TRUE(serveUntil(1));

    EXPECT_TRUE(m_inbox.frames[0].isCut);
}

TEST_F(TransportTest, FramesThatAreNotWelcomeAreLeftWithTheirSender)
{
    const auto endpoint = open();
    ASSERT_EQ(send("first"), EAaSysComStatus_Ok);
    ASSERT_TRUE(serveUntil(1));
    m_inbox.isOpen = false;
    ASSERT_EQ(send("second"), EAaSysComStatus_Ok);
    m_waitSet.wait(Clock::get().monotonic() + 20s); // the second has arrived

    EXPECT_EQ(texts(), std::vector<std::string>{"first"});

    m_inbox.isOpen = true;
    ASSERT_TRUE(serveUntil(2));
    EXPECT_EQ(texts(), (std::vector<std::string>{"first", "second"}));
}

TEST_F(TransportTest, WithoutPatienceAFullReceiverIsReportedAtOnce)
{
    const auto endpoint = open();
    const testkit::ManualClock clock; // stands still: a wait would not end

    EXPECT_GT(fill(), 0U);

    EXPECT_EQ(send("x"), EAaSysComStatus_QueueFull);
}

TEST_F(TransportTest, FullReceiverIsReportedWhenThePatienceIsOver)
{
    const auto endpoint = open();
    fill();
    testkit::ManualClock clock;
    const Deadline begin = clock.monotonic();
    std::atomic<int> status{-1};
    std::thread sender([&] { status.store(send("x", 3s)); });
    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(clock.nextDeadline(), begin + 3s);

    clock.advance(3s);

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_QueueFull);
}

TEST_F(TransportTest, RoomEndsTheWaitForIt)
{
    const auto endpoint = open();
    const std::size_t count = fill();
    testkit::ManualClock clock;
    std::atomic<int> status{-1};
    std::thread sender([&] { status.store(send("last", 3s)); });
    ASSERT_TRUE(clock.waitForSleepers());

    while (m_inbox.frames.size() <= count) {
        m_waitSet.wait(noDeadline);
    }

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_Ok);
    EXPECT_EQ(m_inbox.frames.back().bytes, "last");
}

TEST_F(TransportTest, EndOfTheEndpointDeliversWhatWasSent)
{
    auto endpoint = open();
    for (const char* text : {"one", "two", "three"}) {
        ASSERT_EQ(send(text), EAaSysComStatus_Ok);
    }
    ASSERT_TRUE(m_inbox.frames.empty());

    endpoint.reset();

    EXPECT_EQ(texts(), (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_FALSE(m_waitSet.hasSources());
}

TEST_F(TransportTest, EndOfTheEndpointDeliversAlsoWhatIsNotWelcome)
{
    auto endpoint = open();
    m_inbox.isOpen = false;
    ASSERT_EQ(send("one"), EAaSysComStatus_Ok);

    endpoint.reset();

    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(TransportTest, EndedEndpointReceivesNothing)
{
    auto endpoint = open();
    ASSERT_EQ(send("one"), EAaSysComStatus_Ok);
    endpoint.reset();

    EXPECT_EQ(send("two"), EAaSysComStatus_NoReceiver);
    EXPECT_EQ(texts(), std::vector<std::string>{"one"});
}

TEST_F(TransportTest, EndpointThatIsOpenedAgainIsFound)
{
    auto endpoint = open();
    ASSERT_EQ(send("one"), EAaSysComStatus_Ok);
    endpoint.reset();
    endpoint = open();

    EXPECT_EQ(send("two"), EAaSysComStatus_Ok);
    EXPECT_TRUE(serveUntil(2));
}

TEST_F(TransportTest, EndOfTheReceiverEndsTheWaitForRoom)
{
    auto endpoint = open();
    fill();
    testkit::ManualClock clock;
    std::atomic<int> status{-1};
    std::thread sender([&] { status.store(send("x", 3s)); });
    ASSERT_TRUE(clock.waitForSleepers());

    endpoint.reset();

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_NoReceiver);
}

TEST_F(TransportTest, EndpointInPlaceOfADirectoryCannotBeOpened)
{
    activeTransport();
    std::filesystem::create_directories(m_node.nodeDirectory() + "/cpid/0300/in the way");

    errno = 0;
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(errno, EADDRINUSE);
    EXPECT_FALSE(m_waitSet.hasSources());
}

TEST_F(TransportTest, WithoutTheNodesDirectoryNothingIsOpenedAndNobodyReached)
{
    activeTransport();
    std::filesystem::remove(m_node.nodeDirectory() + "/cpid");

    errno = 0;
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(send("x"), EAaSysComStatus_NoReceiver);
}

TEST_F(TransportTest, AnotherTransportIsUsedWithinItsScope)
{
    class Nowhere : public Transport {
    public:
        EAaSysComStatus send(TAaSysComCpid, std::span<const std::byte>, Nanoseconds) override
        {
            return EAaSysComStatus_NoRoute;
        }
        EAaSysComStatus sendToNode(TAaSysComNid node, std::span<const std::byte> frame, Nanoseconds) override
        {
            nodes.push_back(node);
            frames.emplace_back(reinterpret_cast<const char*>(frame.data()), frame.size());
            return EAaSysComStatus_Ok;
        }
        std::unique_ptr<Endpoint> open(TAaSysComCpid, WaitSet&, FrameSink&) override { return nullptr; }

        std::vector<TAaSysComNid> nodes;
        std::vector<std::string> frames;
    };
    Transport& usual = activeTransport();
    Nowhere nowhere;

    {
        const TransportScope scope(nowhere);
        EXPECT_EQ(send("x"), EAaSysComStatus_NoRoute);
        void* message = AaSysComMsgCreate(1, 0, AaSysComSicadGet(cpid, 0x0F02));
        EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    }
    EXPECT_EQ(nowhere.nodes, std::vector<TAaSysComNid>{0x0F02});
    ASSERT_EQ(nowhere.frames.size(), 1U);
    EXPECT_EQ(nowhere.frames[0].size(), sizeof(FrameHeader));

    EXPECT_EQ(&activeTransport(), &usual);
}

/// What a stand-in that forwards forgot would be lost without a word.
TEST(TransportPortTest, TransportThatKnowsNothingOfNodesIsNone)
{
    class WithoutNodes : public Transport {
    public:
        EAaSysComStatus send(TAaSysComCpid, std::span<const std::byte>, Nanoseconds) override;
        std::unique_ptr<Endpoint> open(TAaSysComCpid, WaitSet&, FrameSink&) override;
    };

    EXPECT_TRUE(std::is_abstract_v<WithoutNodes>);
}

/// A process that sends and is gone before anybody looks.
class TransportPeerTest : public testkit::NodeTest {};

TEST_F(TransportPeerTest, FramesOfAProcessThatHasGoneArriveAndTellSo)
{
    ChildProcess child([](ChildProcess::Parent& parent) {
        ASSERT_TRUE(parent.await());
        EXPECT_EQ(sendText(activeTransport(), "last words"), EAaSysComStatus_Ok);
    });
    const pid_t sender = child.pid();
    WaitSet waitSet;
    Inbox inbox;
    const auto endpoint = activeTransport().open(cpid, waitSet, inbox);
    ASSERT_TRUE(endpoint);
    child.tell();
    ASSERT_TRUE(child.hasSucceeded());

    const Deadline end = Clock::get().monotonic() + testkit::generousBound;
    while (inbox.frames.empty() && Clock::get().monotonic() < end) {
        waitSet.wait(end);
    }

    ASSERT_EQ(inbox.frames.size(), 1U);
    EXPECT_EQ(inbox.frames[0].bytes, "last words");
    EXPECT_EQ(inbox.frames[0].sender, sender);
    EXPECT_TRUE(inbox.frames[0].isGone);
}

} // namespace
} // namespace dorn::host::test
