// SPDX-License-Identifier: MIT
#include "Pattern.hpp"
#include "PeerProcess.hpp"
#include "RawSender.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "node/PerNode.hpp"
#include "syscom/CpidRegistry.hpp"
#include "syscom/MessageQueue.hpp"

#include <array>
#include <atomic>
#include <cstdio>
#include <list>
#include <poll.h>
#include <thread>

namespace dorn::host::test {
namespace {

using testkit::TestEu;

constexpr TAaSysComCpid cpid = 0x0300;

class BetweenProcessesTest : public SysComTest {
protected:
    /// Takes patterns until @p count have been seen or none comes for long.
    static PatternCheck takePatterns(std::uint32_t count)
    {
        PatternCheck check;
        while (check.count() < count) {
            constexpr std::uint16_t filter[] = {1, patternId};
            void* message = AaSysComMsgReceiveSelective(generousTimeout, filter);
            if (!message) {
                break;
            }
            check.take(message);
            AaSysComMsgDestroy(&message);
        }
        return check;
    }
    /// Asks until the collector of @p peer has taken @p count patterns.
    static Answer awaitCollected(PeerProcess& peer, std::uint32_t count)
    {
        Answer collected{};
        const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
        do {
            collected = peer.ask({.order = Order::Collected});
        } while (collected.first < count && std::chrono::steady_clock::now() < end);
        return collected;
    }
    std::int32_t sendPattern(std::uint32_t sequence, std::uint16_t size = leastPattern)
    {
        void* message = makePattern(addressOf(cpid), 1, sequence, size);
        return AaSysComMsgSend(&message);
    }
};

TEST_F(BetweenProcessesTest, MessagesOfAnySizeArriveWholeAndInOrder)
{
    PeerProcess peer;
    peer.tell({.order = Order::Send, .cpid = m_cpid, .size = leastPattern, .count = 200});
    EXPECT_EQ(takePatterns(200).count(), 200U);
    EXPECT_EQ(peer.answer().first, 200U);
    for (const std::uint16_t size : {std::uint16_t{13}, std::uint16_t{4096}, std::uint16_t{65535}}) {
        peer.tell({.order = Order::Send, .cpid = m_cpid, .size = size, .count = 20});
        const PatternCheck check = takePatterns(20);

        EXPECT_EQ(check.count(), 20U);
        EXPECT_EQ(check.broken(), 0U);
        EXPECT_EQ(check.outOfOrder(), 0U);
        EXPECT_EQ(peer.answer().first, 20U);
    }
}

TEST_F(BetweenProcessesTest, EmptyMessageArrives)
{
    PeerProcess peer;
    peer.ask({.order = Order::Register, .cpid = cpid});

    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_Ok);
    EXPECT_TRUE(m_log.texts().empty());
    peer.ask({.order = Order::Deregister, .cpid = cpid}); // it still answers
}

TEST_F(BetweenProcessesTest, SenderIsTheFirstCpidOfTheSendingEu)
{
    PeerProcess peer;
    peer.ask({.order = Order::Send, .cpid = m_cpid, .count = 1});

    void* message = AaSysComMsgReceive(generousTimeout);

    EXPECT_EQ(AaSysComMsgGetSender(message), peer.address());
    EXPECT_EQ(AaSysComMsgGetReceiver(message), address());
    AaSysComMsgDestroy(&message);
}

TEST_F(BetweenProcessesTest, MessagesOfAProcessThatHasEndedArriveAndAreBelieved)
{
    PeerProcess peer;
    peer.ask({.order = Order::Register, .cpid = 0x0042});
    // Nothing is taken before the process has gone and another has its cpid.
    AaSem* taking = AaSemCreateC(0);
    PatternCheck check;
    TestEu receiver([&] {
        AaSemTake(taking, AA_WAIT_FOREVER);
        check = takePatterns(50);
    });
    ASSERT_EQ(AaSysComUserRegister(cpid, receiver.id()), cpid);
    EXPECT_EQ(peer.ask({.order = Order::Send, .cpid = cpid, .count = 50, .sender = addressOf(0x0042)}).first, 50U);
    peer.kill();
    PeerProcess successor;
    ASSERT_EQ(successor.ask({.order = Order::Register, .cpid = 0x0042}).first, 0x0042U);

    AaSemGive(taking);
    receiver.wait();
    AaSemDestroy(&taking);

    EXPECT_EQ(check.count(), 50U);
    EXPECT_EQ(check.outOfOrder(), 0U);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(BetweenProcessesTest, RestartedReceiverIsFoundAgain)
{
    for (int round = 0; round < 3; ++round) {
        PeerProcess peer;
        ASSERT_EQ(peer.ask({.order = Order::Collect, .cpid = cpid}).first, cpid);

        EXPECT_EQ(sendPattern(0), EAaSysComStatus_Ok);
        EXPECT_EQ(sendPattern(1), EAaSysComStatus_Ok);

        const Answer collected = awaitCollected(peer, 2);
        EXPECT_EQ(collected.first, 2U);
        EXPECT_EQ(collected.third, 0U);
        peer.kill();
    }
    EXPECT_EQ(sendPattern(0), EAaSysComStatus_NoReceiver);
}

TEST_F(BetweenProcessesTest, EveryEuFindsTheRestartedReceiver)
{
    std::atomic<int> phase{0};
    std::atomic<int> sent{0};
    const auto body = [&] {
        sent += sendEmpty(1, addressOf(cpid)) == 0 ? 1 : 0;
        sent.notify_all();
        phase.wait(0);
        sent += sendEmpty(1, addressOf(cpid)) == 0 ? 1 : 0;
        sent.notify_all();
    };
    PeerProcess first;
    first.ask({.order = Order::RegisterInEu, .cpid = cpid});
    TestEu eu(body);
    TestEu another(body);
    while (sent.load() < 2) {
        sent.wait(sent.load() < 2 ? sent.load() : -1);
    }
    first.kill();
    PeerProcess second;
    second.ask({.order = Order::RegisterInEu, .cpid = cpid});

    phase.store(1);
    phase.notify_all();

    eu.wait();
    another.wait();
    EXPECT_EQ(sent.load(), 4);
}

TEST_F(BetweenProcessesTest, ReceiverThatMovedToAnotherProcessIsFound)
{
    PeerProcess first;
    PeerProcess second;
    first.ask({.order = Order::Collect, .cpid = cpid});
    ASSERT_EQ(sendPattern(0), EAaSysComStatus_Ok);
    awaitCollected(first, 1);
    ASSERT_EQ(first.ask({.order = Order::Deregister, .cpid = cpid}).first, 0U);
    second.ask({.order = Order::Collect, .cpid = cpid});

    EXPECT_EQ(sendPattern(0), EAaSysComStatus_Ok);

    EXPECT_EQ(awaitCollected(second, 1).first, 1U);
    EXPECT_EQ(first.ask({.order = Order::Collected}).first, 1U);
}

TEST_F(BetweenProcessesTest, ProcessesKilledWhileTheySendLeaveNoHalfMessages)
{
    std::list<PeerProcess> senders(2);
    for (PeerProcess& sender : senders) {
        sender.ask({.order = Order::SendForever, .cpid = m_cpid, .size = 20000});
    }
    PatternCheck check;
    for (std::size_t killed = 0; killed <= senders.size(); ++killed) {
        for (int count = 0; count < 100; ++count) {
            void* message = AaSysComMsgReceive(killed < senders.size() ? generousTimeout : AA_NO_WAIT);
            if (AaSysComMsgGetId(message) == patternId) {
                check.take(message);
            }
            AaSysComMsgDestroy(&message);
        }
        if (killed < senders.size()) {
            std::next(senders.begin(), static_cast<std::ptrdiff_t>(killed))->kill();
        }
    }
    EXPECT_GE(check.count(), 200U);
    EXPECT_EQ(check.broken(), 0U);
    EXPECT_TRUE(m_log.texts().empty());

    PeerProcess late; // everybody else goes on
    EXPECT_EQ(late.ask({.order = Order::Send, .cpid = m_cpid, .count = 3}).first, 3U);
}

TEST_F(BetweenProcessesTest, NothingIsLostOrDoubledUnderSeveralSendingProcessesAndEus)
{
    constexpr std::uint32_t each = 3000;
    std::list<PeerProcess> peers(2);
    for (PeerProcess& peer : peers) {
        peer.tell({.order = Order::Send, .cpid = m_cpid, .size = 100, .count = each});
    }
    const TAaSysComSicad own = address();
    const auto body = [own] {
        for (std::uint32_t sequence = 0; sequence < each; ++sequence) {
            void* message = makePattern(own, AaProEuCurrent(), sequence, 100);
            EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
        }
    };
    const TestEu first(body);
    const TestEu second(body);
    std::map<TAaSysComSicad, PatternCheck> bySender;
    std::uint32_t answers = 0;
    for (std::uint32_t count = 0; count < 4 * each + 2; ++count) {
        void* message = AaSysComMsgReceive(generousTimeout);
        ASSERT_NE(message, nullptr);
        if (AaSysComMsgGetId(message) == patternId) {
            bySender[AaSysComMsgGetSender(message)].take(message);
        } else {
            ++answers;
        }
        AaSysComMsgDestroy(&message);
    }

    EXPECT_EQ(answers, 2U);
    ASSERT_EQ(bySender.size(), 3U); // the two processes, and this process's EUs without a cpid
    for (const auto& [sender, check] : bySender) {
        EXPECT_EQ(check.count(), sender == 0 ? 2 * each : each);
        EXPECT_EQ(check.broken(), 0U);
        EXPECT_EQ(check.outOfOrder(), 0U);
    }
    EXPECT_EQ(AaSysComMsgReceive(AA_NO_WAIT), nullptr);
}

TEST_F(BetweenProcessesTest, WhatWasAcceptedWhileTheReceiverDeregisteredIsReceived)
{
    PeerProcess sender;
    sender.ask({.order = Order::SendForever, .cpid = cpid});
    std::uint32_t received = 0;
    const auto take = [&](std::int32_t timeout) {
        void* message = AaSysComMsgReceive(timeout);
        received += AaSysComMsgGetId(message) == patternId ? 1 : 0;
        const bool isThere = message != nullptr;
        AaSysComMsgDestroy(&message);
        return isThere;
    };
    for (int round = 0; round < 300; ++round) {
        ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
        take(generousTimeout); // the sender has found it
        ASSERT_EQ(AaSysComUserDeregister(cpid), 0);
    }
    const std::uint32_t accepted = sender.ask({.order = Order::StopSending}).first;
    while (take(AA_NO_WAIT)) {
    }

    EXPECT_EQ(received, accepted);
}

TEST_F(BetweenProcessesTest, WhatWasAcceptedWhileAnotherEuDeregisteredTheReceiverIsReceived)
{
    PeerProcess sender;
    sender.ask({.order = Order::SendForever, .cpid = cpid});
    std::atomic<std::uint32_t> received{0};
    std::atomic<bool> isOver{false};
    TestEu receiver([&] {
        while (void* message = AaSysComMsgReceive(isOver.load() ? AA_NO_WAIT : generousTimeout)) {
            received.fetch_add(1);
            AaSysComMsgDestroy(&message);
        }
        while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
            received.fetch_add(1);
            AaSysComMsgDestroy(&message);
        }
    });
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(AaSysComUserRegister(cpid, receiver.id()), cpid);
        const std::uint32_t before = received.load();
        while (received.load() == before) {
            std::this_thread::yield();
        }
        ASSERT_EQ(AaSysComUserDeregister(cpid), 0);
    }
    const std::uint32_t accepted = sender.ask({.order = Order::StopSending}).first;
    isOver.store(true);
    AaSysComEuWakeUp(receiver.id());
    receiver.wait();

    EXPECT_EQ(received.load(), accepted);
}

TEST_F(BetweenProcessesTest, LocalSendersDoNotStarveOtherProcesses)
{
    std::atomic<bool> isOver{false};
    const TAaSysComSicad own = address();
    PeerProcess peer;
    TestEu local([&] {
        while (!isOver.load()) {
            sendEmpty(1, own);
        }
    });
    ASSERT_EQ(peer.ask({.order = Order::Send, .cpid = m_cpid, .count = 1}).first, 1U);

    unsigned taken = 0;
    while (taken < 1000000 && takeId(generousTimeout) != patternId) {
        ++taken;
    }

    isOver.store(true);
    local.wait();
    EXPECT_LT(taken, 1000000U);
}

/// So many connections that each look at them brings more than is taken until the next.
TEST_F(BetweenProcessesTest, OtherProcessesDoNotStarveLocalSenders)
{
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    const Bytes frame = frameOf(goodHeader(addressOf(cpid)));
    std::list<RawSender> connections;
    for (int count = 0; count < 12; ++count) {
        connections.emplace_back(m_node.nodeDirectory(), cpid);
    }
    const auto flood = [&] {
        for (const RawSender& connection : connections) {
            connection.sendUnlessFull(frame);
        }
    };
    for (int count = 0; count < 100; ++count) {
        flood();
    }
    ASSERT_EQ(takeId(generousTimeout), 0x55U);
    const TAaSysComSicad own = address();
    TestEu local([own] { sendEmpty(1, own); });
    local.wait();

    unsigned taken = 0;
    while (taken < 200000 && takeId(generousTimeout) != 1) {
        if (++taken % 4 == 0) {
            flood();
        }
    }

    EXPECT_LT(taken, 200000U);
}

TEST_F(BetweenProcessesTest, PeerThatFloodsASelectiveReceiverIsHeldBackAndLosesNothing)
{
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    for (int count = 0; count < MessageQueue::capacity - 10; ++count) {
        ASSERT_EQ(sendEmpty(1, address()), EAaSysComStatus_Ok);
    }
    PeerProcess peer;
    peer.tell({.order = Order::Send, .cpid = cpid, .count = 500});

    EXPECT_EQ(takeId(generousTimeout / 1000, {2}), 0U); // passes over as many as may be kept, no more

    for (int count = 0; count < MessageQueue::capacity - 10; ++count) {
        ASSERT_EQ(takeId(), 1U);
    }
    const PatternCheck check = takePatterns(500);
    EXPECT_EQ(check.count(), 500U);
    EXPECT_EQ(check.outOfOrder(), 0U);
    EXPECT_EQ(peer.answer().first, 500U);
}

TEST_F(BetweenProcessesTest, ProgramRunWhileEusWorkDoesNotDisturbThem)
{
    PeerProcess peer;
    peer.ask({.order = Order::SendForever, .cpid = m_cpid, .size = 100});
    PatternCheck check;
    for (int round = 0; round < 20; ++round) {
        FILE* const program = popen("exit 3", "r");
        ASSERT_NE(program, nullptr);
        for (int count = 0; count < 20; ++count) {
            void* message = AaSysComMsgReceive(generousTimeout);
            ASSERT_NE(message, nullptr);
            check.take(message);
            AaSysComMsgDestroy(&message);
        }
        EXPECT_EQ(pclose(program), 3 << 8);
    }
    peer.tell({.order = Order::StopSending});
    while (void* message = AaSysComMsgReceive(100000)) {
        if (AaSysComMsgGetId(message) == patternId) {
            check.take(message);
        }
        AaSysComMsgDestroy(&message);
    }

    EXPECT_EQ(check.outOfOrder(), 0U);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(BetweenProcessesTest, EndOfAForkedProcessLeavesTheCpidsOfItsParentAlone)
{
    PeerProcess peer;
    ASSERT_EQ(peer.ask({.order = Order::Register, .cpid = cpid}).first, cpid);

    peer.ask({.order = Order::Fork});

    PeerProcess other; // has no connection yet
    EXPECT_EQ(other.ask({.order = Order::Send, .cpid = cpid, .count = 1}).first, 1U);
    EXPECT_EQ(peer.ask({.order = Order::Deregister, .cpid = cpid}).first, 0U); // it still answers
}

TEST_F(BetweenProcessesTest, ClosingTheNodeTakesInWhatWasSent)
{
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    FrameHeader header = goodHeader(addressOf(cpid));
    header.sender = addressOf(0x0042);
    RawSender(m_node.nodeDirectory(), cpid).send(frameOf(header));

    closeNode();

    EXPECT_EQ(PerNode<CpidRegistry>::ifOpen(), nullptr);
    EXPECT_EQ(takeId(), 0x55U);
}

TEST_F(BetweenProcessesTest, ReceiverWhoseConnectionsAreNeverTakenDoesNotBlockTheSender)
{
    PeerProcess peer;
    peer.ask({.order = Order::RegisterInEu, .cpid = cpid}); // does not receive
    const auto connectOnce = [this] { const RawSender sender(m_node.nodeDirectory(), cpid, SOCK_NONBLOCK); };
    EXPECT_THROW(
        {
            for (int count = 0; count < 100000; ++count) {
                connectOnce();
            }
        },
        std::system_error); // nobody more may wait for being taken

    EXPECT_EQ(sendEmpty(1, addressOf(cpid)), EAaSysComStatus_QueueFull);
    EXPECT_EQ(sendEmpty(2, peer.address()), EAaSysComStatus_Ok);
}

} // namespace
} // namespace dorn::host::test
