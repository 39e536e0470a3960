// SPDX-License-Identifier: MIT
#include "gateway/Link.hpp"

#include "NoMemory.hpp"
#include "NodeTest.hpp"

#include <algorithm>
#include <gmock/gmock.h>

namespace dorn::gateway::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes what the link does.
class TestWire final : public LinkWire {
public:
    void resolve(const std::string& host) override { done.push_back("resolve " + host); }
    void connect(const std::string& address, std::uint16_t port) override
    {
        done.push_back("connect " + address + " " + std::to_string(port));
    }
    void close() override { done.push_back("close"); }
    bool send(std::span<const std::byte> head, std::span<const std::byte> body) override
    {
        if (!hasRoom) {
            return false;
        }
        WireBytes& bytes = sent.emplace_back(head.begin(), head.end());
        bytes.insert(bytes.end(), body.begin(), body.end());
        return true;
    }

    std::vector<std::string> takeDone() { return std::exchange(done, {}); }
    /// Takes the messages of a kind that have been sent; the others stay.
    template <class Kind>
    std::vector<Kind> take()
    {
        std::vector<Kind> found;
        std::erase_if(sent, [&found](const WireBytes& bytes) {
            const WireMessage message = readWire(bytes);
            if (const auto* const one = std::get_if<Kind>(&message)) {
                found.push_back(*one);
                return true;
            }
            return false;
        });
        return found;
    }

    std::vector<std::string> done;
    std::vector<WireBytes> sent;
    bool hasRoom = true;
};

constexpr std::uint64_t ownEpoch = 0x0E;
constexpr std::uint64_t peerEpoch = 0xA1;
constexpr std::uint64_t nextPeerEpoch = 0xA2;

class LinkTest : public testkit::NodeTest {
protected:
    void accept(std::uint32_t id, std::size_t size = 0)
    {
        m_link.accept({id, 0x01010042, 0x01020300, static_cast<std::uint16_t>(size)}, WireBytes(size));
    }
    void tickAt(Nanoseconds now)
    {
        m_now = now;
        m_link.tick(now);
    }
    /// The other gateway answers the latest greeting.
    void welcome(std::uint64_t session, std::uint64_t expected = 1, std::uint64_t epoch = peerEpoch)
    {
        const std::vector<Greeting> greetings = m_wire.take<Greeting>();
        ASSERT_FALSE(greetings.empty());
        m_link.onMessage(Welcome{greetings.back().attempt, epoch, session, expected}, m_now);
    }
    void bringUp(std::uint64_t session, std::uint64_t expected = 1, std::uint64_t epoch = peerEpoch)
    {
        tickAt(std::max(m_now, m_link.deadline()));
        welcome(session, expected, epoch);
        ASSERT_TRUE(m_link.isUp());
    }
    /// Nothing goes wrong, and heartbeats are answered, for so long.
    void stayUpFor(Nanoseconds time)
    {
        for (const Nanoseconds end = m_now + time; m_now < end;) {
            tickAt(m_now + m_options.heartbeat);
            m_link.onMessage(Confirmation{}, m_now);
        }
        ASSERT_TRUE(m_link.isUp());
    }
    LinkStatus status() const
    {
        LinkStatus status;
        m_link.describe(status, m_now);
        return status;
    }
    std::vector<std::uint64_t> parcelNumbers()
    {
        std::vector<std::uint64_t> numbers;
        for (const Parcel& parcel : m_wire.take<Parcel>()) {
            numbers.push_back(parcel.number);
        }
        return numbers;
    }

    GatewayOptions m_options{.queueMessages = 100};
    TableRow m_row{0x0102, "192.0.2.1", 5670, {}};
    PeerLife m_life;
    TestWire m_wire;
    Nanoseconds m_now = 100s;
    QueueRoom m_room{m_options.allQueuesBytes};
    Link m_link{m_row, 0x0101, ownEpoch, m_options, m_life, m_wire, m_room, m_now};
};

TEST_F(LinkTest, ItIsTriedAtOnceWithAGreeting)
{
    EXPECT_EQ(m_link.deadline(), m_now);

    m_link.tick(m_now);

    EXPECT_THAT(m_wire.takeDone(), ElementsAre("connect 192.0.2.1 5670"));
    const std::vector<Greeting> greetings = m_wire.take<Greeting>();
    ASSERT_EQ(greetings.size(), 1U);
    EXPECT_EQ(greetings[0].epoch, ownEpoch);
    EXPECT_EQ(greetings[0].from, 0x0101);
    EXPECT_EQ(greetings[0].to, 0x0102);
    EXPECT_EQ(status().state, LinkState::Connecting);
}

TEST_F(LinkTest, NothingIsSentBeforeTheWelcome)
{
    accept(1);
    m_link.tick(m_now);
    m_link.flush();

    EXPECT_THAT(m_wire.take<Parcel>(), IsEmpty());
    EXPECT_EQ(status().waiting, 1U);
}

TEST_F(LinkTest, WelcomeBringsItUpAndWhatWaitsGoes)
{
    accept(1);
    accept(2);
    bringUp(77);

    const std::vector<Parcel> parcels = m_wire.take<Parcel>();
    ASSERT_EQ(parcels.size(), 1U);
    EXPECT_EQ(parcels[0].session, 77U);
    EXPECT_EQ(parcels[0].number, 1U);
    EXPECT_EQ(parcels[0].count, 2U);
    EXPECT_EQ(status().state, LinkState::Up);
    EXPECT_EQ(status().peerEpoch, peerEpoch);
    EXPECT_EQ(status().ups, 1U);
    EXPECT_THAT(m_log.texts(), IsEmpty()); // Info is not kept
}

TEST_F(LinkTest, WelcomeOfAnotherAttemptIsPassedOver)
{
    m_link.tick(m_now);
    const std::uint64_t attempt = m_wire.take<Greeting>().at(0).attempt;

    m_link.onMessage(Welcome{attempt + 1, peerEpoch, 77, 1}, m_now);

    EXPECT_FALSE(m_link.isUp());
}

TEST_F(LinkTest, ConfirmedMessagesGo)
{
    accept(1);
    bringUp(77);

    m_link.onConfirmation({77, 2});

    EXPECT_EQ(status().confirmed, 1U);
    EXPECT_EQ(status().waiting, 0U);
}

TEST_F(LinkTest, ConfirmationOfAnotherSessionIsPassedOver)
{
    accept(1);
    bringUp(77);

    m_link.onConfirmation({78, 2});
    m_link.onConfirmation({0, 2});

    EXPECT_EQ(status().confirmed, 0U);
}

TEST_F(LinkTest, ParcelsCarryWhatIsToBeConfirmed)
{
    int said = 0;
    m_link.setPiggyback([] { return Confirmation{55, 66}; }, [&said] { ++said; });
    accept(1);
    bringUp(77);

    const Parcel parcel = m_wire.take<Parcel>().at(0);
    EXPECT_EQ(parcel.confirmation.session, 55U);
    EXPECT_EQ(parcel.confirmation.expected, 66U);
    EXPECT_EQ(said, 1);
    m_wire.hasRoom = false;
    accept(2);
    m_link.flush();
    EXPECT_EQ(said, 1); // it has not been said again
}

TEST_F(LinkTest, AfterACutItGoesOnWhereTheOtherIs)
{
    bringUp(77);
    for (std::uint32_t id = 1; id <= 3; ++id) {
        accept(id);
        m_link.flush();
    }
    EXPECT_THAT(parcelNumbers(), ElementsAre(1, 2, 3));
    m_link.onFault(LinkFault::Cut, m_now);
    accept(4);
    m_link.flush();
    EXPECT_THAT(parcelNumbers(), IsEmpty());

    bringUp(78, 2);

    EXPECT_THAT(parcelNumbers(), ElementsAre(2, 3, 4));
    EXPECT_EQ(status().confirmed, 1U);
    EXPECT_EQ(status().dropped.sum(), 0U);
}

TEST_F(LinkTest, RestartedPeerGetsNothingOfWhatWasForItsOldLife)
{
    bringUp(77);
    accept(1);
    m_link.flush();
    m_link.onFault(LinkFault::Cut, m_now);
    accept(2);
    accept(3);
    m_wire.sent.clear();

    bringUp(78, 1, nextPeerEpoch);

    EXPECT_THAT(parcelNumbers(), IsEmpty());
    EXPECT_EQ(status().dropped[DropReason::Unconfirmed], 1U);
    EXPECT_EQ(status().dropped[DropReason::PeerRestarted], 2U);
    EXPECT_EQ(status().waiting, 0U);
    accept(4);
    m_link.flush();
    EXPECT_THAT(parcelNumbers(), ElementsAre(1));
}

TEST_F(LinkTest, WhatIsAcceptedAfterTheNewLifeHasBeenMetIsForIt)
{
    bringUp(77);
    accept(1);
    m_life.meet(nextPeerEpoch, m_life.count(), m_now); // it has greeted first
    EXPECT_FALSE(m_link.isUp());
    accept(2);
    m_wire.sent.clear();

    bringUp(78, 1, nextPeerEpoch);

    const std::vector<Parcel> parcels = m_wire.take<Parcel>();
    ASSERT_EQ(parcels.size(), 1U);
    EXPECT_EQ(parcels[0].count, 1U);
    EXPECT_EQ(status().dropped[DropReason::PeerRestarted], 1U);
}

TEST_F(LinkTest, WelcomeFromALifeThatHasEndedIsRefused)
{
    bringUp(77);
    m_life.meet(nextPeerEpoch, m_life.count(), m_now);
    tickAt(m_link.deadline());
    m_wire.takeDone();

    welcome(78, 1, peerEpoch);

    EXPECT_FALSE(m_link.isUp());
    EXPECT_EQ(status().fault, LinkFault::Refused);
}

/// It was asked, died, and what it had answered comes after the next one has begun a session of its own.
TEST_F(LinkTest, LateWelcomeOfALifeThatWasNeverMetDoesNotEndThePresentOne)
{
    accept(1);
    tickAt(m_link.deadline());
    m_life.meet(nextPeerEpoch, m_life.count(), m_now);

    welcome(77, 1, peerEpoch);

    EXPECT_FALSE(m_link.isUp());
    EXPECT_EQ(status().fault, LinkFault::Refused);
    EXPECT_EQ(m_life.epoch(), nextPeerEpoch);
    bringUp(78, 1, nextPeerEpoch);
    EXPECT_EQ(m_wire.take<Parcel>().at(0).count, 1U);
}

TEST_F(LinkTest, WelcomeOfTheLifeThatWasMetMeanwhileIsTaken)
{
    tickAt(m_link.deadline());
    m_life.meet(peerEpoch, m_life.count(), m_now);

    welcome(77);

    EXPECT_TRUE(m_link.isUp());
}

TEST_F(LinkTest, FirstContactGetsWhatWaits)
{
    accept(1);
    tickAt(m_link.deadline());
    m_link.onFault(LinkFault::Unreachable, m_now);
    accept(2);

    bringUp(77);

    EXPECT_EQ(m_wire.take<Parcel>().at(0).count, 2U);
    EXPECT_EQ(status().dropped.sum(), 0U);
}

TEST_F(LinkTest, BackOffIsDoubledUpToItsGreatest)
{
    std::vector<Nanoseconds> waits;
    for (int attempt = 0; attempt < 8; ++attempt) {
        tickAt(m_link.deadline());
        m_link.onFault(LinkFault::Unreachable, m_now);
        waits.push_back(m_link.deadline() - m_now);
    }

    EXPECT_THAT(waits, ElementsAre(100ms, 200ms, 400ms, 800ms, 1600ms, 3200ms, 5000ms, 5000ms));
    bringUp(77);
    stayUpFor(2s);
    m_link.onFault(LinkFault::Cut, m_now);
    EXPECT_EQ(m_link.deadline() - m_now, 100ms);
}

TEST_F(LinkTest, LinkThatIsLostAsSoonAsItIsUpIsTriedMoreAndMoreRarely)
{
    std::vector<Nanoseconds> waits;
    for (std::uint64_t session = 1; session <= 4; ++session) {
        bringUp(session);
        m_link.onMessage(Refusal{RefusalCode::NoSession, session}, m_now);
        waits.push_back(m_link.deadline() - m_now);
    }

    EXPECT_THAT(waits, ElementsAre(100ms, 200ms, 400ms, 800ms));
}

TEST_F(LinkTest, PeerThatIsKnownToBeThereIsTriedSoon)
{
    for (int attempt = 0; attempt < 8; ++attempt) {
        tickAt(m_link.deadline());
        m_link.onFault(LinkFault::Unreachable, m_now);
    }
    EXPECT_EQ(m_link.deadline(), m_now + 5s);

    m_link.tryNow(m_now);

    EXPECT_EQ(m_link.deadline(), m_now + 100ms);
    m_link.tryNow(m_now + 50ms); // no later than it was
    EXPECT_EQ(m_link.deadline(), m_now + 100ms);
    bringUp(77);
    m_link.tryNow(m_now);
    EXPECT_TRUE(m_link.isUp());
}

TEST_F(LinkTest, AttemptThatTakesTooLongIsGivenUp)
{
    m_link.tick(m_now);
    EXPECT_EQ(m_link.deadline(), m_now + 3s);

    tickAt(m_now + 3s);

    EXPECT_EQ(status().state, LinkState::Waiting);
    EXPECT_EQ(status().fault, LinkFault::Unreachable);
    EXPECT_THAT(m_wire.takeDone(), ElementsAre("connect 192.0.2.1 5670", "close"));
}

TEST_F(LinkTest, SilentPeerIsCut)
{
    bringUp(77);
    const Nanoseconds begin = m_now;
    for (int beat = 1; beat < 4; ++beat) {
        tickAt(begin + beat * 500ms);
        EXPECT_TRUE(m_link.isUp());
    }

    tickAt(begin + 2s);

    EXPECT_FALSE(m_link.isUp());
    EXPECT_EQ(status().fault, LinkFault::Silent);
    EXPECT_EQ(m_wire.take<Ping>().size(), 5U);
}

TEST_F(LinkTest, AnythingHeardKeepsItUp)
{
    bringUp(77);
    const Nanoseconds begin = m_now;
    m_link.onMessage(Confirmation{77, 1}, begin + 1900ms);

    tickAt(begin + 3800ms);
    EXPECT_TRUE(m_link.isUp());
    tickAt(begin + 3900ms);
    EXPECT_FALSE(m_link.isUp());
}

TEST_F(LinkTest, HeartbeatMeasuresTheRoundTrip)
{
    bringUp(77);
    EXPECT_FALSE(status().roundTrip);
    const Ping ping = m_wire.take<Ping>().at(0);
    EXPECT_EQ(ping.session, 77U);

    m_link.onMessage(Pong{{77, 1}, ping.stamp}, m_now + 3ms);

    EXPECT_EQ(status().roundTrip, 3ms);
    m_link.onFault(LinkFault::Cut, m_now);
    EXPECT_FALSE(status().roundTrip);
}

TEST_F(LinkTest, StampThatWasNeverSentMeasuresNothing)
{
    bringUp(77);
    const Ping ping = m_wire.take<Ping>().at(0);
    for (const std::uint64_t stamp : {std::uint64_t{0}, ~std::uint64_t{0}, std::uint64_t{1} << 63, ping.stamp + 1}) {
        m_link.onMessage(Pong{{77, 1}, stamp}, m_now + 3ms);
        EXPECT_FALSE(status().roundTrip) << stamp;
    }
    m_link.onMessage(Pong{{77, 1}, ping.stamp}, m_now + 3ms);
    m_link.onMessage(Pong{{77, 1}, ping.stamp}, m_now + 9ms); // once more

    EXPECT_EQ(status().roundTrip, 3ms);
}

TEST_F(LinkTest, LatePongMeasuresItsOwnPing)
{
    bringUp(77);
    const Nanoseconds begin = m_now;
    const Ping first = m_wire.take<Ping>().at(0);
    tickAt(begin + 500ms);

    m_link.onMessage(Pong{{77, 1}, first.stamp}, begin + 700ms);

    EXPECT_EQ(status().roundTrip, 700ms);
}

TEST_F(LinkTest, PongOfAnotherSessionMeasuresNothing)
{
    bringUp(77);

    m_link.onMessage(Pong{{76, 1}, 1}, m_now + 3ms);

    EXPECT_FALSE(status().roundTrip);
}

TEST_F(LinkTest, OverflowDropsTheOldestAndIsLoggedOncePerBurst)
{
    for (std::uint32_t id = 1; id <= 115; ++id) {
        accept(id);
    }
    EXPECT_EQ(status().accepted, 115U);
    EXPECT_EQ(status().dropped[DropReason::QueueFull], 15U);
    EXPECT_EQ(status().waiting, 100U);
    const std::string line = "Warning 0x0 The queue to node 0x0102 is full (100 messages, 1600 bytes): the oldest are "
                             "dropped";
    EXPECT_EQ(m_log.texts(), std::vector{line});

    bringUp(77);
    for (std::uint64_t expected = 2; status().waiting > 0; ++expected) {
        m_link.onConfirmation({77, expected});
        m_link.flush(); // until the burst is over
    }
    stayUpFor(2500ms);
    const std::string end = "Warning 0x0 The queue to node 0x0102 has room again: 15 messages were dropped meanwhile";
    EXPECT_EQ(m_log.texts(), (std::vector{line, end}));
    m_wire.hasRoom = false;
    for (std::uint32_t id = 1; id <= 102; ++id) {
        accept(id);
    }
    EXPECT_EQ(m_log.texts(), (std::vector{line, end, line}));
}

TEST_F(LinkTest, SourceThatIsALittleFasterThanTheLinkIsReportedOnce)
{
    bringUp(77);
    std::uint64_t expected = 2;
    for (int round = 0; round < 20; ++round) {
        for (std::uint32_t id = 1; id <= 105; ++id) {
            accept(id); // five too many
        }
        while (status().waiting > 0) {
            m_link.flush();
            m_link.onMessage(Confirmation{77, expected++}, m_now);
        }
        tickAt(m_now + 500ms);
    }
    EXPECT_EQ(m_log.texts().size(), 1U);

    stayUpFor(2500ms);

    EXPECT_EQ(m_log.texts().size(), 2U);
    EXPECT_EQ(m_log.count("Warning 0x0 The queue to node 0x0102 has room again: 100 messages were dropped meanwhile"),
              1U);
}

TEST_F(LinkTest, RareDropsWhileTheLinkIsDownAreOneBurst)
{
    for (std::uint32_t id = 1; id <= 110; ++id) {
        accept(id);
        m_now += 10s;
        if (m_now >= m_link.deadline()) {
            tickAt(m_now);
        }
    }

    EXPECT_EQ(status().dropped[DropReason::QueueFull], 10U);
    const std::vector<std::string> lines = m_log.texts();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.find("queue") != std::string::npos; }),
              1);
}

TEST_F(LinkTest, MessageForWhichThereIsNoMemoryIsDroppedAndCounted)
{
    accept(1);
    {
        const NoMemory noMemory;
        m_link.accept({2, 0x01010042, 0x01020300, 0}, {});
    }
    accept(3);

    EXPECT_EQ(status().accepted, 3U);
    EXPECT_EQ(status().waiting, 2U);
    EXPECT_EQ(status().dropped[DropReason::QueueFull], 1U);
}

TEST_F(LinkTest, FullestQueueGivesWayWhereAllTakeTooMuch)
{
    QueueRoom room(10 * RecordHeader::size);
    TestWire otherWire;
    PeerLife otherLife;
    TableRow otherRow{0x0103, "192.0.2.2", 5670, {}};
    Link one(m_row, 0x0101, ownEpoch, m_options, m_life, m_wire, room, m_now);
    Link other(otherRow, 0x0101, ownEpoch, m_options, otherLife, otherWire, room, m_now);
    for (std::uint32_t id = 1; id <= 30; ++id) {
        one.accept({id, 0x01010042, 0x01020300, 0}, {});
    }
    for (std::uint32_t id = 1; id <= 3; ++id) {
        other.accept({id, 0x01010042, 0x01030300, 0}, {});
    }

    LinkStatus ofOne;
    LinkStatus ofOther;
    one.describe(ofOne, m_now);
    other.describe(ofOther, m_now);
    EXPECT_EQ(ofOne.waiting, 7U);
    EXPECT_EQ(ofOne.dropped[DropReason::QueueFull], 23U);
    EXPECT_EQ(ofOther.waiting, 3U);
    EXPECT_EQ(ofOther.dropped[DropReason::QueueFull], 0U);
    EXPECT_EQ(m_log.texts().size(), 1U);
}

TEST_F(LinkTest, WhatTheWireDoesNotTakeWaits)
{
    bringUp(77);
    m_wire.hasRoom = false;
    accept(1);
    m_link.flush();
    EXPECT_EQ(status().waiting, 1U);
    m_wire.hasRoom = true;
    m_link.flush();
    EXPECT_THAT(parcelNumbers(), IsEmpty()); // not tried on and on

    m_link.onMessage(Confirmation{77, 1}, m_now);
    m_link.flush();

    EXPECT_THAT(parcelNumbers(), ElementsAre(1));
}

TEST_F(LinkTest, HeartbeatFindsOutWhetherTheWireTakesMessagesAgain)
{
    bringUp(77);
    m_wire.hasRoom = false;
    accept(1);
    m_link.flush();
    m_wire.hasRoom = true;

    tickAt(m_now + 500ms);
    m_link.flush();

    EXPECT_THAT(parcelNumbers(), ElementsAre(1));
}

TEST_F(LinkTest, RefusedSessionIsBegunAnew)
{
    bringUp(77);
    m_link.onMessage(Refusal{RefusalCode::NoSession, 76}, m_now);
    EXPECT_TRUE(m_link.isUp());

    m_link.onMessage(Refusal{RefusalCode::NoSession, 77}, m_now);

    EXPECT_EQ(status().fault, LinkFault::Refused);
    bringUp(78);
}

TEST_F(LinkTest, RefusedVersionIsTold)
{
    m_link.tick(m_now);
    const std::uint64_t attempt = m_wire.take<Greeting>().at(0).attempt;

    m_link.onMessage(Refusal{RefusalCode::Version, attempt}, m_now);

    EXPECT_EQ(status().fault, LinkFault::Version);
    EXPECT_EQ(status().state, LinkState::Waiting);
}

TEST_F(LinkTest, RefusalForAReasonOfNoKnownVersionIsGarbage)
{
    for (const std::uint16_t code : {std::uint16_t{0}, std::uint16_t{4}, std::uint16_t{0xFFFF}}) {
        tickAt(m_link.deadline());
        const std::uint64_t attempt = m_wire.take<Greeting>().at(0).attempt;

        m_link.onMessage(Refusal{static_cast<RefusalCode>(code), attempt}, m_now);

        EXPECT_EQ(status().fault, LinkFault::Garbage) << code;
        EXPECT_EQ(status().state, LinkState::Waiting);
    }
}

TEST_F(LinkTest, TableThatIsAtOddsWithTheOthersIsTold)
{
    m_link.tick(m_now);
    const std::uint64_t attempt = m_wire.take<Greeting>().at(0).attempt;

    m_link.onMessage(Refusal{RefusalCode::WrongNode, attempt}, m_now);

    EXPECT_EQ(status().fault, LinkFault::WrongNode);
    EXPECT_EQ(nameOf(status().fault), "wrong node");
}

TEST_F(LinkTest, WelcomeThatExpectsWhatWasNeverSentIsGarbage)
{
    accept(1);
    bringUp(77);
    m_link.onFault(LinkFault::Cut, m_now);
    tickAt(m_link.deadline());

    welcome(78, 3);

    EXPECT_FALSE(m_link.isUp());
    EXPECT_EQ(status().fault, LinkFault::Garbage);
    EXPECT_EQ(status().waiting, 1U);
    bringUp(79, 2);
    EXPECT_EQ(status().confirmed, 1U);
}

TEST_F(LinkTest, AnswerOfAnotherVersionIsTold)
{
    m_link.tick(m_now);

    m_link.onMessage(OtherVersion{2, false, 0}, m_now);

    EXPECT_EQ(status().fault, LinkFault::Version);
}

TEST_F(LinkTest, GarbageEndsTheSession)
{
    bringUp(77);

    m_link.onMessage(Garbage{}, m_now);

    EXPECT_EQ(status().fault, LinkFault::Garbage);
}

TEST_F(LinkTest, FaultIsLoggedOnceUntilItChanges)
{
    for (const LinkFault fault : {LinkFault::Unreachable, LinkFault::Unreachable, LinkFault::KeyRefused}) {
        tickAt(m_link.deadline());
        m_link.onFault(fault, m_now);
    }
    bringUp(77);
    accept(1);
    m_link.onFault(LinkFault::Cut, m_now);

    EXPECT_EQ(m_log.texts(),
              (std::vector<std::string>{
                  "Warning 0x0 No link to node 0x0102 (192.0.2.1 port 5670): unreachable; it is tried again",
                  "Warning 0x0 No link to node 0x0102 (192.0.2.1 port 5670): key refused; it is tried again",
                  "Warning 0x0 The link to node 0x0102 is lost: cut; 1 messages wait"}));
}

TEST_F(LinkTest, FaultsThatAlternateAreLoggedOnceEach)
{
    for (int attempt = 0; attempt < 10; ++attempt) {
        tickAt(m_link.deadline());
        m_link.onFault(attempt % 2 == 0 ? LinkFault::Unreachable : LinkFault::KeyRefused, m_now);
    }
    EXPECT_EQ(m_log.texts().size(), 2U);

    bringUp(77);
    stayUpFor(2s);
    m_link.onFault(LinkFault::Cut, m_now);
    tickAt(m_link.deadline());
    m_link.onFault(LinkFault::Unreachable, m_now);

    EXPECT_EQ(m_log.texts().size(), 4U); // lost, and unreachable anew
}

TEST_F(LinkTest, TimeInStateBeginsAtTheChange)
{
    const Nanoseconds begin = m_now;
    tickAt(begin);
    m_link.onFault(LinkFault::Unreachable, begin);
    m_now = begin + 1s;
    EXPECT_EQ(status().inState, 1s);
    bringUp(77);
    m_now += 5s;
    EXPECT_EQ(status().inState, 5s);
}

class NamedHostTest : public LinkTest {
protected:
    NamedHostTest() { m_row.host = "board-b.example"; }
};

TEST_F(NamedHostTest, NameIsLookedUpBeforeTheAttempt)
{
    m_link.tick(m_now);
    EXPECT_EQ(status().state, LinkState::Resolving);
    EXPECT_THAT(m_wire.takeDone(), ElementsAre("resolve board-b.example"));

    m_link.onResolved({"192.0.2.7"}, m_now);

    EXPECT_EQ(status().state, LinkState::Connecting);
    EXPECT_THAT(m_wire.takeDone(), ElementsAre("connect 192.0.2.7 5670"));
}

TEST_F(NamedHostTest, UnknownNameIsAFaultAndTriedAgain)
{
    m_link.tick(m_now);
    m_link.onResolved({}, m_now);

    EXPECT_EQ(status().fault, LinkFault::HostUnknown);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{
                  "Warning 0x0 No link to node 0x0102 (board-b.example port 5670): host unknown; it is tried again"});
    m_wire.takeDone();
    tickAt(m_link.deadline());
    EXPECT_THAT(m_wire.takeDone(), ElementsAre("resolve board-b.example"));
}

TEST_F(NamedHostTest, EachAddressIsTriedBeforeTheNameIsLookedUpAgain)
{
    m_link.tick(m_now);
    m_link.onResolved({"192.0.2.7", "192.0.2.8"}, m_now);
    for (int attempt = 0; attempt < 2; ++attempt) {
        m_link.onFault(LinkFault::Unreachable, m_now);
        tickAt(m_link.deadline());
    }

    EXPECT_THAT(m_wire.takeDone(), ElementsAre("resolve board-b.example", "connect 192.0.2.7 5670", "close",
                                               "connect 192.0.2.8 5670", "close", "resolve board-b.example"));
}

TEST_F(NamedHostTest, NameIsLookedUpAnewAfterTheLinkWasUp)
{
    m_link.tick(m_now);
    m_link.onResolved({"192.0.2.7", "192.0.2.8"}, m_now);
    welcome(77);
    m_link.onFault(LinkFault::Cut, m_now);
    m_wire.takeDone();

    tickAt(m_link.deadline());

    EXPECT_THAT(m_wire.takeDone(), ElementsAre("resolve board-b.example"));
}

TEST_F(NamedHostTest, AddressThatComesTooLateIsForTheNextAttempt)
{
    m_link.tick(m_now);
    tickAt(m_link.deadline());
    EXPECT_EQ(status().fault, LinkFault::HostUnknown);
    m_wire.takeDone();

    m_link.onResolved({"192.0.2.7"}, m_now);
    EXPECT_EQ(status().state, LinkState::Waiting);
    EXPECT_THAT(m_wire.takeDone(), IsEmpty());
    tickAt(m_link.deadline());

    EXPECT_EQ(status().state, LinkState::Connecting);
    EXPECT_THAT(m_wire.takeDone(), ElementsAre("connect 192.0.2.7 5670"));
}

} // namespace
} // namespace dorn::gateway::test
