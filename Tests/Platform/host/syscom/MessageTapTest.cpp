// SPDX-License-Identifier: MIT
#include "syscom/MessageTap.hpp"

#include "AaSysCom.h"
#include "ManualClock.hpp"
#include "PeerProcess.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "node/PerNode.hpp"
#include "syscom/MessageQueue.hpp"

#include <chrono>
#include <optional>
#include <thread>
#include <unistd.h>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;
using testkit::TestEu;

constexpr TAaSysComCpid cpid = 0x0300;

/// What a watcher sees of one message.
struct Seen {
    TapRecord record;
    std::vector<std::byte> payload;
};

class MessageTapTest : public SysComTest {
protected:
    static MessageTap& tap() { return PerNode<MessageTap>::get(); }

    /// An EU that neither waits nor is waited for sends itself messages.
    static void sendToItself(int messages)
    {
        TestEu sender([messages] {
            const TAaSysComCpid own = AaSysComUserRegister(0, AaProEuCurrent());
            for (int count = 0; count < messages; ++count) {
                sendEmpty(1, addressOf(own));
                EXPECT_EQ(takeId(), 1U);
            }
        });
        sender.wait();
    }

    /// The next record for the test's EU; other messages are left.
    static std::optional<Seen> takeRecord(std::int32_t timeout = generousTimeout)
    {
        std::vector<void*> others;
        std::optional<Seen> seen;
        while (!seen) {
            void* message = AaSysComMsgReceive(timeout);
            if (!message) {
                return std::nullopt;
            }
            if (AaSysComMsgGetId(message) == MessageTap::recordId) {
                const auto* const bytes = static_cast<const std::byte*>(AaSysComMsgGetPayload(message));
                seen.emplace();
                std::memcpy(&seen->record, bytes, sizeof(TapRecord));
                seen->payload.assign(bytes + sizeof(TapRecord), bytes + AaSysComMsgGetPayloadSize(message));
            }
            AaSysComMsgDestroy(&message);
        }
        return seen;
    }
};

TEST_F(MessageTapTest, NobodyWatchesAtFirst)
{
    EXPECT_FALSE(MessageTap::isWatched());
}

TEST_F(MessageTapTest, WatcherSeesWhatItsOwnProcessSends)
{
    ManualClock clock(std::chrono::seconds(1000));
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    void* message = AaSysComMsgCreate(0x77, 4, addressOf(0x0BAD));
    std::memcpy(AaSysComMsgGetPayload(message), "abcd", 4);
    AaSysComMsgSend(&message); // nobody receives it; the watcher sees it all the same

    const std::optional<Seen> seen = takeRecord(AA_NO_WAIT);

    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->record.wall, std::chrono::nanoseconds(std::chrono::seconds(1000)).count());
    EXPECT_EQ(seen->record.pid, getpid());
    EXPECT_EQ(seen->record.lost, 0U);
    EXPECT_EQ(seen->record.header.id, 0x77U);
    EXPECT_EQ(seen->record.header.sender, address());
    EXPECT_EQ(seen->record.header.receiver, addressOf(0x0BAD));
    EXPECT_EQ(seen->record.header.payloadSize, 4);
    ASSERT_EQ(seen->payload.size(), 4U);
    EXPECT_EQ(std::memcmp(seen->payload.data(), "abcd", 4), 0);
}

TEST_F(MessageTapTest, WatcherSeesWhatOtherProcessesSendToEachOther)
{
    PeerProcess sender;
    PeerProcess receiver;
    receiver.ask({.order = Order::RegisterInEu, .cpid = cpid});
    ASSERT_TRUE(tap().addWatcher(m_cpid));

    EXPECT_EQ(sender.ask({.order = Order::Send, .cpid = cpid, .count = 1}).first, 1U);

    std::optional<Seen> seen;
    do {
        seen = takeRecord();
    } while (seen && seen->record.header.id != 0x7003);
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->record.pid, sender.pid());
    EXPECT_EQ(seen->record.header.receiver, addressOf(cpid));
}

TEST_F(MessageTapTest, RecordsThemselvesAreNotShown)
{
    const TAaSysComCpid other = AaSysComUserRegister(0, AaProEuCurrent());
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    ASSERT_TRUE(tap().addWatcher(other));
    sendEmpty(1, addressOf(0x0BAD));

    EXPECT_TRUE(takeRecord(AA_NO_WAIT));
    EXPECT_TRUE(takeRecord(AA_NO_WAIT));
    EXPECT_FALSE(takeRecord(AA_NO_WAIT));
}

TEST_F(MessageTapTest, GreatestPayloadIsCut)
{
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    void* message = AaSysComMsgCreate(1, 65535, addressOf(0x0BAD));
    std::memset(AaSysComMsgGetPayload(message), 0x5A, 65535);
    AaSysComMsgSend(&message);

    const std::optional<Seen> seen = takeRecord(AA_NO_WAIT);

    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->record.header.payloadSize, 65535);
    EXPECT_EQ(seen->payload, std::vector<std::byte>(65535 - sizeof(TapRecord), std::byte{0x5A}));
}

TEST_F(MessageTapTest, RemovedWatcherSeesNothing)
{
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    tap().removeWatcher(m_cpid);

    sendEmpty(1, addressOf(0x0BAD));

    EXPECT_FALSE(MessageTap::isWatched());
    EXPECT_FALSE(takeRecord(AA_NO_WAIT));
}

TEST_F(MessageTapTest, NinthWatcherIsRefused)
{
    for (std::size_t count = 0; count < MessageTap::maxWatchers; ++count) {
        ASSERT_TRUE(tap().addWatcher(AaSysComUserRegister(0, AaProEuCurrent())));
    }

    EXPECT_FALSE(tap().addWatcher(m_cpid));
}

TEST_F(MessageTapTest, WatcherThatAsksAgainSeesEachMessageOnce)
{
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    sendEmpty(1, addressOf(0x0BAD));

    EXPECT_TRUE(takeRecord(AA_NO_WAIT));
    EXPECT_FALSE(takeRecord(AA_NO_WAIT));
    tap().removeWatcher(m_cpid);
    EXPECT_FALSE(MessageTap::isWatched());
}

TEST_F(MessageTapTest, KilledWatcherIsRemovedByTheNextSender)
{
    PeerProcess watcher;
    ASSERT_NE(watcher.ask({.order = Order::Watch}).first, 0U);
    EXPECT_TRUE(MessageTap::isWatched());
    watcher.kill();

    sendEmpty(1, address());

    EXPECT_FALSE(MessageTap::isWatched());
    EXPECT_EQ(takeId(), 1U);
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(MessageTapTest, SuccessorOfAKilledWatcherSeesEachMessageOnce)
{
    {
        PeerProcess watcher;
        ASSERT_EQ(watcher.ask({.order = Order::Watch, .cpid = cpid}).first, cpid);
        watcher.kill();
    }
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);
    ASSERT_TRUE(tap().addWatcher(cpid));

    sendEmpty(1, addressOf(0x0BAD));

    EXPECT_TRUE(takeRecord(AA_NO_WAIT));
    EXPECT_FALSE(takeRecord(AA_NO_WAIT));
}

TEST_F(MessageTapTest, SuccessorOfAKilledWatcherThatDoesNotWatchSeesNothing)
{
    {
        PeerProcess watcher;
        ASSERT_EQ(watcher.ask({.order = Order::Watch, .cpid = cpid}).first, cpid);
        watcher.kill();
    }
    ASSERT_EQ(AaSysComUserRegister(cpid, AaProEuCurrent()), cpid);

    sendEmpty(1, addressOf(0x0BAD));

    EXPECT_FALSE(takeRecord(AA_NO_WAIT));
}

TEST_F(MessageTapTest, KilledWatchersMakeRoomForANewOneAlthoughNothingIsSent)
{
    {
        PeerProcess watcher;
        ASSERT_EQ(watcher.ask({.order = Order::Watch, .cpid = cpid}).first, cpid);
        for (std::size_t count = 1; count < MessageTap::maxWatchers; ++count) {
            ASSERT_TRUE(tap().addWatcher(AaSysComUserRegister(0, AaProEuCurrent())));
        }
        watcher.kill();
    }

    EXPECT_TRUE(tap().addWatcher(m_cpid));
    EXPECT_FALSE(tap().addWatcher(0x0BAD));
}

TEST_F(MessageTapTest, SlowWatcherLearnsHowManyItMissed)
{
    constexpr std::uint32_t count = 3000; // far more than the kernel keeps
    PeerProcess flooder;
    AaSem* go = AaSemCreateC(0);
    AaSem* done = AaSemCreateC(0);
    std::uint32_t seen = 0;
    std::uint32_t lost = 0;
    TestEu watcher([&] {
        EXPECT_TRUE(tap().addWatcher(AaSysComUserRegister(0, AaProEuCurrent())));
        for (int round = 0; round < 3; ++round) {
            AaSemGive(done);
            AaSemTake(go, AA_WAIT_FOREVER);
            while (const std::optional<Seen> record = takeRecord(AA_NO_WAIT)) {
                seen += record->record.pid == flooder.pid() ? 1 : 0;
                lost += record->record.lost;
            }
        }
    });
    AaSemTake(done, AA_WAIT_FOREVER);
    flooder.ask({.order = Order::Send, .cpid = 0x0BAD, .size = 1000, .count = count});
    AaSemGive(go);
    AaSemTake(done, AA_WAIT_FOREVER);
    EXPECT_LT(seen, count);
    flooder.ask({.order = Order::Send, .cpid = 0x0BAD, .count = 1}); // tells what was lost at the end
    AaSemGive(go);
    AaSemTake(done, AA_WAIT_FOREVER);

    EXPECT_EQ(seen + lost, count + 1 + 2); // with the answers
    AaSemGive(go);
    watcher.wait();
    AaSemDestroy(&go);
    AaSemDestroy(&done);
}

TEST_F(MessageTapTest, WatcherWithAFullQueueDoesNotHoldUpSenders)
{
    const ManualClock clock; // stands still: a wait would not end
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    sendToItself(MessageQueue::capacity + 10);

    int seen = 0;
    while (takeRecord(AA_NO_WAIT)) {
        ++seen;
    }
    EXPECT_EQ(seen, MessageQueue::capacity);
    sendEmpty(1, addressOf(0));
    const std::optional<Seen> next = takeRecord(AA_NO_WAIT);
    ASSERT_TRUE(next);
    EXPECT_EQ(next->record.lost, 10U);
}

TEST_F(MessageTapTest, WhatAnEarlierWatcherMissedIsNotToldToTheNext)
{
    const ManualClock clock;
    ASSERT_TRUE(tap().addWatcher(m_cpid));
    sendToItself(MessageQueue::capacity + 10);
    tap().removeWatcher(m_cpid);
    emptyQueue();
    const TAaSysComCpid next = AaSysComUserRegister(0, AaProEuCurrent());
    ASSERT_TRUE(tap().addWatcher(next));

    sendEmpty(1, addressOf(0));

    const std::optional<Seen> seen = takeRecord(AA_NO_WAIT);
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->record.lost, 0U);
}

} // namespace
} // namespace dorn::host::test
