// SPDX-License-Identifier: MIT
#include "AaSysCom.h"
#include "ManualClock.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <chrono>

namespace dorn::host::test {
namespace {

using testkit::ManualClock;
using testkit::TestEu;

constexpr std::uint16_t fillerId = 0x100;

class ReceiveTest : public SysComTest {
protected:
    void sendMany(unsigned count, TAaSysComMsgId id = fillerId)
    {
        for (unsigned index = 0; index < count; ++index) {
            ASSERT_EQ(sendEmpty(id, address()), EAaSysComStatus_Ok);
        }
    }
    /// The ids of all that is queued.
    static std::vector<TAaSysComMsgId> takeAll()
    {
        std::vector<TAaSysComMsgId> ids;
        while (const TAaSysComMsgId id = takeId()) {
            ids.push_back(id);
        }
        return ids;
    }
};

TEST_F(ReceiveTest, MessagesComeInTheOrderInWhichTheyWereSent)
{
    for (TAaSysComMsgId id = 1; id <= 5; ++id) {
        sendEmpty(id, address());
    }

    EXPECT_EQ(takeAll(), (std::vector<TAaSysComMsgId>{1, 2, 3, 4, 5}));
}

TEST_F(ReceiveTest, MessagesToAllCpidsOfAnEuComeInOneOrder)
{
    const TAaSysComCpid second = AaSysComUserRegister(0, AaProEuCurrent());
    sendEmpty(1, address());
    sendEmpty(2, addressOf(second));
    sendEmpty(3, address());

    EXPECT_EQ(takeAll(), (std::vector<TAaSysComMsgId>{1, 2, 3}));
}

TEST_F(ReceiveTest, SelectiveReceiveLeavesTheOthersInTheirOrder)
{
    for (const TAaSysComMsgId id : {1U, 2U, 3U, 2U, 4U}) {
        sendEmpty(id, address());
    }

    EXPECT_EQ(takeId(AA_NO_WAIT, {2}), 2U);
    EXPECT_EQ(takeAll(), (std::vector<TAaSysComMsgId>{1, 3, 2, 4}));
}

TEST_F(ReceiveTest, OfSeveralIdsTheEarliestArrivalIsTaken)
{
    for (const TAaSysComMsgId id : {1U, 3U, 2U, 3U, 2U}) {
        sendEmpty(id, address());
    }

    EXPECT_EQ(takeId(AA_NO_WAIT, {2, 3}), 3U);
    EXPECT_EQ(takeId(AA_NO_WAIT, {2, 3}), 2U);
    EXPECT_EQ(takeId(AA_NO_WAIT, {3, 2}), 3U);
    EXPECT_EQ(takeAll(), (std::vector<TAaSysComMsgId>{1, 2}));
}

TEST_F(ReceiveTest, SelectiveAndOtherReceivesMayTakeTurns)
{
    for (const TAaSysComMsgId id : {7U, 8U, 7U, 8U, 7U, 8U}) {
        sendEmpty(id, address());
    }

    EXPECT_EQ(takeId(AA_NO_WAIT, {8}), 8U);
    EXPECT_EQ(takeId(), 7U);
    EXPECT_EQ(takeId(AA_NO_WAIT, {8}), 8U);
    sendEmpty(9, address());
    EXPECT_EQ(takeId(AA_NO_WAIT, {9}), 9U);
    EXPECT_EQ(takeAll(), (std::vector<TAaSysComMsgId>{7, 7, 8}));
    sendEmpty(8, address());
    EXPECT_EQ(takeId(AA_NO_WAIT, {8}), 8U);
}

TEST_F(ReceiveTest, SelectiveReceiveFindsAMessageBehindAThousandOthers)
{
    sendMany(1000);
    sendEmpty(7, address());

    EXPECT_EQ(takeId(AA_NO_WAIT, {7}), 7U);
    EXPECT_EQ(takeAll(), std::vector<TAaSysComMsgId>(1000, fillerId));
}

TEST_F(ReceiveTest, SelectiveReceiveWaitsForAMessageThatComesLater)
{
    sendMany(10);
    std::atomic<TAaSysComMsgId> taken{0};
    const TAaSysComCpid own = m_cpid;
    const TestEu sender([own] {
        for (unsigned count = 0; count < 1000; ++count) {
            sendEmpty(fillerId, addressOf(own));
        }
        sendEmpty(7, addressOf(own));
    });

    EXPECT_EQ(takeId(generousTimeout, {7}), 7U);
    EXPECT_EQ(takeAll().size(), 1010U);
}

TEST_F(ReceiveTest, IdAboveSixteenBitsIsNotMistakenForAListedOne)
{
    sendEmpty(0x10007, address());
    sendEmpty(7, address());

    EXPECT_EQ(takeId(AA_NO_WAIT, {7}), 7U);
    EXPECT_EQ(takeAll(), std::vector<TAaSysComMsgId>{0x10007});
}

TEST_F(ReceiveTest, EmptyListAcceptsNothing)
{
    sendEmpty(1, address());
    const std::uint16_t empty[] = {0};

    EXPECT_EQ(AaSysComMsgReceiveSelective(AA_NO_WAIT, empty), nullptr);
    EXPECT_EQ(AaSysComMsgReceiveSelective(AA_NO_WAIT, nullptr), nullptr);
    EXPECT_EQ(takeAll(), std::vector<TAaSysComMsgId>{1});
}

TEST_F(ReceiveTest, NoWaitTakesWhatIsThereAndReturnsAtOnceOtherwise)
{
    const ManualClock clock; // stands still: a wait would not end

    EXPECT_EQ(AaSysComMsgReceive(AA_NO_WAIT), nullptr);
    sendEmpty(1, address());
    EXPECT_EQ(takeId(AA_NO_WAIT), 1U);
    EXPECT_EQ(takeId(AA_NO_WAIT, {1}), 0U);
}

TEST_F(ReceiveTest, TimeOutIsInMicroSeconds)
{
    ManualClock clock;
    std::atomic<bool> hasReturned{false};
    TestEu eu([&] {
        EXPECT_EQ(AaSysComMsgReceive(1500), nullptr);
        hasReturned.store(true);
    });
    ASSERT_TRUE(clock.waitForSleepers());

    clock.advance(std::chrono::nanoseconds(1499999));

    EXPECT_EQ(clock.nextDeadline(), clock.monotonic() + std::chrono::nanoseconds(1));
    EXPECT_FALSE(hasReturned.load());
    clock.advance(std::chrono::nanoseconds(1));
    eu.wait();
}

TEST_F(ReceiveTest, TimeOutOfASelectiveReceiveIsNotProlongedByOtherMessages)
{
    ManualClock clock;
    const Deadline begin = clock.monotonic();
    TAaSysComCpid cpid = 0;
    TestEu eu([&] { EXPECT_EQ(takeId(1000, {7}), 0U); });
    ASSERT_TRUE(clock.waitForSleepers());
    cpid = AaSysComUserRegister(0, eu.id());
    clock.advance(std::chrono::microseconds(400));

    sendEmpty(fillerId, addressOf(cpid));

    ASSERT_TRUE(clock.waitForSleepers());
    EXPECT_EQ(clock.nextDeadline(), begin + std::chrono::microseconds(1000));
    clock.advance(std::chrono::microseconds(600));
    eu.wait();
}

TEST_F(ReceiveTest, TimeOutOfRealTimeIsNotEarly)
{
    Clock& clock = Clock::get();
    for (const int timeout : {1, 50, 2000, 15000}) {
        const Deadline until = clock.monotonic() + std::chrono::microseconds(timeout);

        EXPECT_EQ(AaSysComMsgReceive(timeout), nullptr);

        EXPECT_GE(clock.monotonic(), until);
    }
}

TEST_F(ReceiveTest, MessageEndsAWaitWithoutLimit)
{
    std::atomic<TAaSysComMsgId> taken{0};
    TestEu eu([&] { taken.store(takeId(AA_WAIT_FOREVER)); });
    const TAaSysComCpid cpid = AaSysComUserRegister(0, eu.id());
    ASSERT_NE(cpid, 0);

    sendEmpty(9, addressOf(cpid));

    eu.wait();
    EXPECT_EQ(taken.load(), 9U);
}

TEST_F(ReceiveTest, AnyNegativeTimeOutWaitsWithoutLimit)
{
    ManualClock clock;
    std::atomic<TAaSysComMsgId> taken{0};
    TestEu eu([&] { taken.store(takeId(-1000)); });
    const TAaSysComCpid cpid = AaSysComUserRegister(0, eu.id());
    clock.advance(std::chrono::hours(24));

    sendEmpty(9, addressOf(cpid));

    eu.wait();
    EXPECT_EQ(taken.load(), 9U);
}

TEST_F(ReceiveTest, QueueOfAnEndedEuIsEmptyForTheNext)
{
    TAaProEuId first = 0;
    {
        std::atomic<bool> isSent{false};
        TestEu eu([&] {
            isSent.wait(false); // ends without taking anything
        });
        first = eu.id();
        const TAaSysComCpid cpid = AaSysComUserRegister(0, eu.id());
        sendEmpty(1, addressOf(cpid));
        isSent.store(true);
        isSent.notify_all();
    }
    std::vector<TAaProEuId> ids;
    for (int round = 0; round < 4100; ++round) { // until the same place is used again
        TestEu eu([&] { EXPECT_EQ(AaSysComMsgReceive(AA_NO_WAIT), nullptr); });
        if ((eu.id() & 0xFFFU) == (first & 0xFFFU)) {
            ASSERT_NE(eu.id(), first);
            return;
        }
    }
    FAIL() << "the place has not been used again";
}

} // namespace
} // namespace dorn::host::test
