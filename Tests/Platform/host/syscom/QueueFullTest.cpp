// SPDX-License-Identifier: MIT
#include "ManualClock.hpp"
#include "Pattern.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/MessageQueue.hpp"
#include "syscom/Post.hpp"
#include "syscom/UnixEndpoint.hpp"
#include "syscom/UnixSocket.hpp"

#include <atomic>
#include <csignal>
#include <memory>
#include <span>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;
using testkit::TestEu;

constexpr unsigned capacity = MessageQueue::capacity;

/// An EU that holds a cpid and receives only when it is told to.
class SlowReceiver {
public:
    SlowReceiver() : m_cpid(AaSysComUserRegister(0, m_eu.id())) {}
    ~SlowReceiver()
    {
        AaSemGive(m_go);
        AaSemGive(m_go);
        m_eu.wait();
        AaSemDestroy(&m_go);
    }
    SlowReceiver(const SlowReceiver&) = delete;
    SlowReceiver& operator=(const SlowReceiver&) = delete;

    TAaSysComSicad address() const { return addressOf(m_cpid); }
    /// Has it take one message, and with it all others into its own list.
    void takeOne() { AaSemGive(m_go); }

private:
    AaSem* m_go = AaSemCreateC(0);
    TestEu m_eu{[this] {
        AaSemTake(m_go, AA_WAIT_FOREVER);
        takeId();
        AaSemTake(m_go, AA_WAIT_FOREVER);
    }};
    TAaSysComCpid m_cpid;
};

class QueueFullTest : public SysComTest {
protected:
    static void fill(TAaSysComSicad receiver)
    {
        for (unsigned count = 0; count < capacity; ++count) {
            ASSERT_EQ(sendEmpty(1, receiver), EAaSysComStatus_Ok);
        }
    }
};

TEST_F(QueueFullTest, MessagesOfTheGreatestSizeFillAQueueBeforeTheyFillTheMemory)
{
    const TAaSysComCpid own = AaSysComUserRegister(0, AaProEuCurrent());
    constexpr unsigned fitting = (capacity + 63) / 64; // 64 KiB each, and the queue is full when it is reached
    for (unsigned count = 0; count < fitting; ++count) {
        void* message = AaSysComMsgCreate(1, AA_SYS_COM_MAX_PAYLOAD, addressOf(own));
        ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    }

    EXPECT_EQ(sendEmpty(2, addressOf(own)), EAaSysComStatus_QueueFull);

    for (unsigned count = 0; count < fitting; ++count) {
        ASSERT_EQ(takeId(AA_NO_WAIT), 1U);
    }
    EXPECT_EQ(sendEmpty(2, addressOf(own)), EAaSysComStatus_Ok);
    EXPECT_EQ(takeId(AA_NO_WAIT), 2U);
}

TEST_F(QueueFullTest, FullReceiverIsReportedAfterTheBackPressureTime)
{
    SlowReceiver receiver;
    fill(receiver.address());
    ManualClock clock;
    const Deadline begin = clock.monotonic();
    std::atomic<std::int32_t> status{-1};
    std::thread sender([&] {
        void* message = AaSysComMsgCreate(0x22, 0, receiver.address());
        status.store(AaSysComMsgSendS(&message, 0x0F010000));
    });
    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(clock.nextDeadline(), begin + backPressureTime);
    EXPECT_EQ(status.load(), -1);

    clock.advance(backPressureTime);

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_QueueFull);
    EXPECT_EQ(m_log.texts().size(), 1U);
    EXPECT_EQ(m_log.count("Warning 0x0 Message not sent: the receiver's queue stayed full (id=0x0022 receiver=0x" +
                          [&] {
                              char text[16];
                              std::snprintf(text, sizeof text, "%08X", receiver.address());
                              return std::string(text);
                          }() +
                          " sender=0x0F010000)"),
              1U);
    receiver.takeOne();
}

TEST_F(QueueFullTest, RoomWakesTheSender)
{
    SlowReceiver receiver;
    fill(receiver.address());
    ManualClock clock; // stands still: the time-out does not help
    std::atomic<std::int32_t> status{-1};
    std::thread sender([&] { status.store(sendEmpty(2, receiver.address())); });
    ASSERT_TRUE(clock.waitForSleepers());

    receiver.takeOne();

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_Ok);
}

TEST_F(QueueFullTest, RoomWakesAllSenders)
{
    SlowReceiver receiver;
    fill(receiver.address());
    ManualClock clock;
    std::atomic<int> sent{0};
    std::vector<std::thread> senders;
    for (int count = 0; count < 4; ++count) {
        senders.emplace_back([&] { sent += sendEmpty(2, receiver.address()) == EAaSysComStatus_Ok ? 1 : 0; });
    }
    ASSERT_TRUE(clock.waitForSleepers(senders.size()));

    receiver.takeOne();

    for (std::thread& sender : senders) {
        sender.join();
    }
    EXPECT_EQ(sent.load(), 4);
}

TEST_F(QueueFullTest, EndOfTheReceiverEndsTheWait)
{
    ManualClock clock;
    std::atomic<std::int32_t> status{-1};
    std::thread sender;
    {
        SlowReceiver receiver;
        fill(receiver.address());
        receiver.takeOne();                             // all is pending with the receiver
        while (sendEmpty(1, receiver.address()) != 0) { // until that has happened
        }
        for (unsigned count = 1; count < capacity; ++count) {
            ASSERT_EQ(sendEmpty(1, receiver.address()), EAaSysComStatus_Ok);
        }
        sender = std::thread([&, to = receiver.address()] { status.store(sendEmpty(2, to)); });
        ASSERT_TRUE(clock.waitForSleepers());
    }
    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_NoReceiver);
}

TEST_F(QueueFullTest, EuThatFillsItsOwnQueueDoesNotWait)
{
    fill(address());
    const ManualClock clock; // stands still: a wait would not end

    EXPECT_EQ(sendEmpty(2, address()), EAaSysComStatus_QueueFull);
    EXPECT_EQ(takeId(), 1U);
    EXPECT_EQ(sendEmpty(2, address()), EAaSysComStatus_Ok);
}

TEST_F(QueueFullTest, SelectiveReceiveBehindAFullQueueEndsAtItsTimeOutAndAtAWakeUp)
{
    fill(address());
    EXPECT_EQ(takeId(AA_NO_WAIT, {9}), 0U);
    sendEmpty(2, address());

    EXPECT_EQ(takeId(100, {9}), 0U);
    AaSysComEuWakeUp(AaProEuCurrent());
    EXPECT_EQ(takeId(AA_WAIT_FOREVER, {9}), 0U);
}

TEST_F(QueueFullTest, MessagesBehindAFullQueueComeWhenThereIsRoom)
{
    fill(address());
    EXPECT_EQ(takeId(AA_NO_WAIT, {9}), 0U);
    sendEmpty(9, address());
    EXPECT_EQ(takeId(AA_NO_WAIT, {9}), 0U);

    EXPECT_EQ(takeId(), 1U);

    EXPECT_EQ(takeId(AA_NO_WAIT, {9}), 9U);
}

class QueueFullBetweenProcessesTest : public SysComTest {
protected:
    /// Sends until the kernel takes no more. @return how many were taken.
    unsigned fill(TAaSysComSicad receiver, ManualClock& clock)
    {
        std::atomic<unsigned> sent{0};
        std::thread sender([&] {
            while (sendEmpty(1, receiver) == EAaSysComStatus_Ok) {
                sent.fetch_add(1);
            }
        });
        EXPECT_TRUE(clock.waitForSleepers());
        clock.advance(backPressureTime);
        sender.join();
        return sent.load();
    }
};

/// Stands where the gateway to another node does, and takes something when it is told to.
class HungGateway final : private FrameSink {
public:
    explicit HungGateway(TAaSysComNid node)
    {
        const RunDirectory& directory = PerNode<RunDirectory>::get();
        directory.makeSubdirectory(nodeSocketFolder);
        m_endpoint = UnixEndpoint::open(directory, nodeSocketName(node), "a node", m_waitSet, *this);
    }

    bool takeSome()
    {
        for (int turn = 0; turn < 1000 && m_taken == 0; ++turn) {
            m_waitSet.wait(Deadline(0));
        }
        return m_taken > 0;
    }

private:
    bool hasRoom() const override { return true; }
    void onFrame(std::span<const std::byte>, bool, const Peer&) override { ++m_taken; }

    WaitSet m_waitSet;
    unsigned m_taken = 0;
    std::unique_ptr<UnixEndpoint> m_endpoint;
};

TEST_F(QueueFullBetweenProcessesTest, HungGatewayIsWaitedForOnceUntilItTakesSomething)
{
    constexpr TAaSysComNid otherNode = 0x0F02;
    const TAaSysComSicad receiver = AaSysComSicadGet(0x0300, otherNode);
    HungGateway gateway(otherNode);
    ManualClock clock;
    const Deadline begin = clock.monotonic();

    EXPECT_GT(fill(receiver, clock), 0U);
    EXPECT_EQ(clock.monotonic(), begin + backPressureTime);
    EXPECT_EQ(sendEmpty(1, receiver), EAaSysComStatus_QueueFull); // at once: nobody moves the clock
    const std::string text = "Warning 0x0 Message not sent: the receiver's queue stayed full (id=0x0001 "
                             "receiver=0x0F020300 sender=";
    EXPECT_EQ(m_log.texts(), (std::vector<std::string>{text + "0x00000000)", text + "0x0F01F000)"}));

    EXPECT_TRUE(gateway.takeSome());
    EXPECT_EQ(sendEmpty(1, receiver), EAaSysComStatus_Ok);
    fill(receiver, clock);
    EXPECT_EQ(clock.monotonic(), begin + 2 * backPressureTime);
}

TEST_F(QueueFullBetweenProcessesTest, GatewayThatHasHungAtOneNodeIsWaitedForAtNone)
{
    HungGateway toFullNode(0x0F02);
    const HungGateway toOtherNode(0x0F03);
    const TAaSysComSicad full = AaSysComSicadGet(0x0300, 0x0F02);
    ManualClock clock;
    const Deadline begin = clock.monotonic();
    fill(full, clock);

    EXPECT_EQ(sendEmpty(1, AaSysComSicadGet(0x0300, 0x0F03)), EAaSysComStatus_Ok);
    EXPECT_EQ(sendEmpty(1, AaSysComSicadGet(0x0300, 0x0F04)), EAaSysComStatus_NoRoute);
    EXPECT_EQ(sendEmpty(1, full), EAaSysComStatus_QueueFull); // at once, all of them: nobody moves the clock

    EXPECT_EQ(clock.monotonic(), begin + backPressureTime);
}

TEST_F(QueueFullBetweenProcessesTest, FullReceiverIsReportedAfterTheBackPressureTime)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::RegisterInEu, .cpid = 0x0300}).first, 0x0300U);
    ManualClock clock;
    const Deadline begin = clock.monotonic();

    EXPECT_GT(fill(addressOf(0x0300), clock), 0U);

    EXPECT_EQ(clock.monotonic(), begin + backPressureTime);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{"Warning 0x0 Message not sent: the receiver's queue stayed full (id=0x0001 "
                                       "receiver=0x0F010300 sender=0x00000000)"});
}

TEST_F(QueueFullBetweenProcessesTest, RoomWakesTheSender)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::RegisterInEu, .cpid = 0x0300}).first, 0x0300U);
    ManualClock clock;
    fill(addressOf(0x0300), clock);
    std::atomic<std::int32_t> status{-1};
    std::thread sender([&] { status.store(sendEmpty(2, addressOf(0x0300))); });
    ASSERT_TRUE(clock.waitForSleepers());

    peer.ask({.order = Order::Drain});

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_Ok);
}

TEST_F(QueueFullBetweenProcessesTest, DeathOfTheReceiverEndsTheWait)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::RegisterInEu, .cpid = 0x0300}).first, 0x0300U);
    ManualClock clock;
    fill(addressOf(0x0300), clock);
    std::atomic<std::int32_t> status{-1};
    std::thread sender([&] { status.store(sendEmpty(2, addressOf(0x0300))); });
    ASSERT_TRUE(clock.waitForSleepers());

    peer.kill();

    sender.join();
    EXPECT_EQ(status.load(), EAaSysComStatus_NoReceiver);
}

TEST_F(QueueFullBetweenProcessesTest, SlowReceiverGetsAllThatWasAccepted)
{
    PeerProcess peer;
    const TAaSysComSicad receiver = addressOf(0x0300);
    peer.ask({.order = Order::Collect, .cpid = 0x0300});
    std::uint32_t accepted = 0;
    for (; accepted < 300; ++accepted) { // 20 MB: far more than the kernel keeps, so the sender waits often
        void* message = makePattern(receiver, 0, accepted, 65535);
        ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    }
    Answer collected{};
    while ((collected = peer.ask({.order = Order::Collected})).first < accepted) {
    }

    EXPECT_EQ(collected.first, accepted);
    EXPECT_EQ(collected.second, 0U);
    EXPECT_EQ(collected.third, 0U);
}

} // namespace
} // namespace dorn::host::test
