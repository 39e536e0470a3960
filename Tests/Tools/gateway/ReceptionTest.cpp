// SPDX-License-Identifier: MIT
#include "gateway/Reception.hpp"

#include <gmock/gmock.h>

namespace dorn::gateway::test {
namespace {

using namespace std::chrono_literals;
using Verdict = Reception::Verdict;

constexpr std::uint64_t ownEpoch = 0x0E;

class ReceptionTest : public testing::Test {
protected:
    std::optional<Welcome> greet(std::uint64_t epoch, const std::string& route = "r")
    {
        return m_reception.onGreeting({epoch, 42, 0x0101, 0x0102}, ownEpoch, route);
    }
    /// Begins a session. @return its id
    std::uint64_t begin(std::uint64_t epoch, const std::string& route = "r")
    {
        const std::uint64_t session = greet(epoch, route).value_or(Welcome{}).session;
        EXPECT_EQ(m_reception.onSession(session, m_now), Verdict::Taken);
        return session;
    }
    Verdict parcel(std::uint64_t number, std::size_t size = 16)
    {
        m_records.resize(size);
        Parcel parcel;
        parcel.number = number;
        parcel.count = 1;
        parcel.records = m_records;
        return m_reception.onParcel(parcel, m_now);
    }

    Nanoseconds m_now = 100s;
    WireBytes m_records;
    PeerLife m_life;
    Reception m_reception{m_life};
};

TEST_F(ReceptionTest, GreetingIsWelcomedWithTheFirstParcelExpected)
{
    const std::optional<Welcome> welcome = greet(1);

    ASSERT_TRUE(welcome);
    EXPECT_EQ(welcome->attempt, 42U);
    EXPECT_EQ(welcome->epoch, ownEpoch);
    EXPECT_NE(welcome->session, 0U);
    EXPECT_EQ(welcome->expected, 1U);
}

TEST_F(ReceptionTest, GreetingAloneBeginsNothing)
{
    greet(1);

    EXPECT_EQ(m_life.epoch(), 0U);
    EXPECT_EQ(m_reception.route(), "");
}

TEST_F(ReceptionTest, FirstMessageOfTheSessionBeginsIt)
{
    begin(1, "route");

    EXPECT_EQ(m_life.epoch(), 1U);
    EXPECT_EQ(m_reception.route(), "route");
}

TEST_F(ReceptionTest, SessionThatWasNeverWelcomedIsStale)
{
    EXPECT_EQ(m_reception.onSession(0, m_now), Verdict::Stale);
    EXPECT_EQ(m_reception.onSession(7, m_now), Verdict::Stale);
    greet(1);
    EXPECT_EQ(m_reception.onSession(0, m_now), Verdict::Stale);
}

TEST_F(ReceptionTest, ParcelsAreTakenInTheirOrder)
{
    begin(1);

    EXPECT_EQ(parcel(1), Verdict::Taken);
    EXPECT_EQ(parcel(2), Verdict::Taken);
    EXPECT_EQ(parcel(2), Verdict::Again);
    EXPECT_EQ(parcel(1), Verdict::Again);
    EXPECT_EQ(parcel(4), Verdict::Missing);
    EXPECT_EQ(parcel(3), Verdict::Taken);
}

TEST_F(ReceptionTest, NextSessionOfTheSameLifeGoesOn)
{
    const std::uint64_t before = begin(1);
    parcel(1);
    parcel(2);

    const std::optional<Welcome> welcome = greet(1);
    ASSERT_TRUE(welcome);
    EXPECT_EQ(welcome->expected, 3U);
    EXPECT_EQ(m_reception.onSession(before, m_now), Verdict::Taken); // the one before is not over yet
    EXPECT_EQ(m_reception.onSession(welcome->session, m_now), Verdict::Taken);
    EXPECT_EQ(m_reception.onSession(before, m_now), Verdict::Stale);
    EXPECT_EQ(parcel(3), Verdict::Taken);
}

TEST_F(ReceptionTest, ParcelThatCameOnTheOldConnectionIsNotTakenAgain)
{
    begin(1);
    parcel(1);
    const std::uint64_t next = greet(1)->session; // expects 2
    parcel(2);                                    // was still on its way
    m_reception.onSession(next, m_now);

    EXPECT_EQ(parcel(2), Verdict::Again);
    EXPECT_EQ(parcel(3), Verdict::Taken);
}

TEST_F(ReceptionTest, AnotherLifeBeginsFromTheFirstParcel)
{
    begin(1);
    parcel(1);
    int ended = 0;
    m_life.whenEnded([&ended](Nanoseconds) { ++ended; });

    EXPECT_EQ(greet(2)->expected, 1U);
    EXPECT_EQ(ended, 0);
    begin(2);

    EXPECT_EQ(ended, 1);
    EXPECT_EQ(parcel(1), Verdict::Taken);
}

TEST_F(ReceptionTest, LifeThatHasEndedIsNotWelcome)
{
    begin(1);
    begin(2);

    EXPECT_FALSE(greet(1));
}

TEST_F(ReceptionTest, WhatADeadSenderLeftInTheNetworkBeginsNothing)
{
    const std::uint64_t dead = greet(1)->session;
    m_life.meet(1, m_life.count(), m_now);
    m_life.meet(2, m_life.count(), m_now); // the link has found it restarted

    EXPECT_EQ(m_reception.onSession(dead, m_now), Verdict::Stale);
    EXPECT_EQ(m_life.epoch(), 2U);
}

TEST_F(ReceptionTest, SessionOfALifeThatTheLinkKnowsToHaveEndedIsStale)
{
    const std::uint64_t session = begin(1);
    m_life.meet(2, m_life.count(), m_now);

    EXPECT_EQ(m_reception.onSession(session, m_now), Verdict::Stale);
}

/// Its greeting was read and answered; its answer was lost, and is sent again by the system that it ran on.
TEST_F(ReceptionTest, LastWordOfALifeThatWasNeverMetDoesNotEndThePresentOne)
{
    const std::uint64_t dead = greet(1)->session;
    m_life.meet(2, m_life.count(), m_now); // the link has found the next one

    EXPECT_EQ(m_reception.onSession(dead, m_now), Verdict::Stale);
    EXPECT_EQ(m_life.epoch(), 2U);
    begin(2);
    EXPECT_EQ(m_life.epoch(), 2U);
}

TEST_F(ReceptionTest, LifeThatGreetedBeforeTheOneBeforeItWasMetGreetsAgain)
{
    begin(1);
    const std::uint64_t early = greet(3)->session;
    m_life.meet(2, m_life.count(), m_now); // a late answer to the link

    EXPECT_EQ(m_reception.onSession(early, m_now), Verdict::Stale);
    begin(3);
    EXPECT_EQ(m_life.epoch(), 3U);
}

TEST_F(ReceptionTest, ConfirmationIsDueAWhileAfterTheFirstParcel)
{
    begin(1);
    EXPECT_EQ(m_reception.deadline(), host::noDeadline);
    parcel(1);
    const Nanoseconds first = m_now;
    m_now += 1ms;
    parcel(2);

    EXPECT_EQ(m_reception.deadline(), first + 5ms);
    const Confirmation confirmation = m_reception.confirm();
    EXPECT_EQ(confirmation.expected, 3U);
    EXPECT_EQ(m_reception.deadline(), host::noDeadline);
}

TEST_F(ReceptionTest, ConfirmationIsDueAtOnceAfterManyBytes)
{
    begin(1);
    for (std::uint64_t number = 1; number <= 4; ++number) {
        EXPECT_NE(m_reception.deadline(), m_now);
        parcel(number, 65536);
    }

    EXPECT_EQ(m_reception.deadline(), m_now);
}

TEST_F(ReceptionTest, NothingIsConfirmedBeforeASession)
{
    greet(1);

    EXPECT_EQ(m_reception.confirm().session, 0U);
    EXPECT_EQ(m_reception.confirm().expected, 0U);
}

TEST(PeerLifeTest, EachLifeIsMetOnce)
{
    using Meeting = PeerLife::Meeting;
    PeerLife life;
    EXPECT_EQ(life.epoch(), 0U);
    EXPECT_EQ(life.meet(5, life.count(), 0s), Meeting::First);
    EXPECT_EQ(life.meet(5, life.count(), 0s), Meeting::Same);
    EXPECT_EQ(life.meet(3, life.count(), 0s), Meeting::New);
    EXPECT_EQ(life.meet(5, life.count(), 0s), Meeting::Ended);
    EXPECT_EQ(life.epoch(), 3U);
    EXPECT_EQ(life.meet(4, life.count(), 0s), Meeting::New);
    EXPECT_EQ(life.wouldBe(3), Meeting::Ended);
    EXPECT_EQ(life.wouldBe(9), Meeting::New);
    EXPECT_EQ(life.epoch(), 4U);
}

TEST(PeerLifeTest, LifeThatEndedLongAgoDoesNotComeBack)
{
    using Meeting = PeerLife::Meeting;
    constexpr std::uint64_t lives = 1000;
    PeerLife life;
    std::vector<std::uint64_t> askedAt;
    for (std::uint64_t epoch = 1; epoch <= lives; ++epoch) {
        askedAt.push_back(life.count());
        life.meet(epoch, life.count(), 0s);
    }
    int ended = 0;
    life.whenEnded([&ended](Nanoseconds) { ++ended; });

    for (std::uint64_t epoch = 1; epoch < lives; ++epoch) {
        const Meeting meeting = life.meet(epoch, askedAt[epoch - 1], 0s);
        EXPECT_TRUE(meeting == Meeting::Late || meeting == Meeting::Ended) << epoch;
    }
    EXPECT_EQ(life.meet(lives, askedAt.back(), 0s), Meeting::Same);
    EXPECT_EQ(life.epoch(), lives);
    EXPECT_EQ(ended, 0);
}

TEST(PeerLifeTest, TwoThatLiveAtOnceDoNotTakeTurns)
{
    using Meeting = PeerLife::Meeting;
    PeerLife life;
    life.meet(1, life.count(), 0s);
    life.meet(2, life.count(), 0s);
    for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(life.meet(1, life.count(), 0s), Meeting::Ended);
        EXPECT_EQ(life.meet(2, life.count(), 0s), Meeting::Same);
    }
}

} // namespace
} // namespace dorn::gateway::test
