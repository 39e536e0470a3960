// SPDX-License-Identifier: MIT
#include "Peer.hpp"

#include "Msg.hpp"
#include "NodeTest.hpp"

#include <gmock/gmock.h>

namespace dorn::testkit {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::ThrowsMessage;
using vel::hwapi::common::Msg;

struct SLink {
    std::uint32_t number;
    std::uint32_t state;
};
using LinkMsg = Msg<SLink, 0x1234>;

constexpr Bound shortBound(1);

class PeerTest : public NodeTest {};

TEST_F(PeerTest, GetsTheCpidItAsksFor)
{
    const Peer peer(0x0123);

    EXPECT_EQ(peer.cpid(), 0x0123);
    EXPECT_EQ(peer.address(), 0x0F010123U);
}

TEST_F(PeerTest, PeersWithoutWishGetCpidsOfTheirOwn)
{
    const Peer one;
    const Peer other;

    EXPECT_NE(one.cpid(), 0);
    EXPECT_NE(one.cpid(), other.cpid());
}

TEST_F(PeerTest, CpidThatSomebodyHoldsIsRefused)
{
    const Peer first(0x0123);

    EXPECT_THAT([] { const Peer second(0x0123); },
                ThrowsMessage<std::runtime_error>("peer: cpid 0x0123 is not granted"));
}

TEST_F(PeerTest, CpidIsFreeAgainAtItsEnd)
{
    {
        const Peer first(0x0123);
    }

    EXPECT_EQ(Peer(0x0123).cpid(), 0x0123);
}

TEST_F(PeerTest, MessageArrivesWithAllItSays)
{
    Peer sender;
    Peer receiver;

    sender.send(0x1234, receiver.address(), "text");
    const Message message = receiver.expect(0x1234);

    EXPECT_EQ(message.id(), 0x1234U);
    EXPECT_EQ(message.sender(), sender.address());
    EXPECT_EQ(message.receiver(), receiver.address());
    EXPECT_EQ(message.text(), "text");
    EXPECT_EQ(message.payload().size(), 4U);
}

TEST_F(PeerTest, ReceiverMayBeACpidOfTheOwnNode)
{
    Peer peer;

    peer.send(0x1234, peer.cpid());

    EXPECT_EQ(peer.expect(0x1234).receiver(), peer.address());
}

TEST_F(PeerTest, MessageMayHaveNoPayload)
{
    Peer peer;

    peer.send(0x1234, peer.address());

    EXPECT_THAT(peer.expect(0x1234).payload(), IsEmpty());
}

TEST_F(PeerTest, TypedMessageIsSentAndExpectedByItsType)
{
    Peer peer;

    peer.send<LinkMsg>(peer.address(), {.number = 3, .state = 2});
    const auto link = peer.expect<LinkMsg>();

    EXPECT_EQ(link->number, 3U);
    EXPECT_EQ((*link).state, 2U);
    EXPECT_EQ(link.payload().size(), sizeof(SLink));
}

TEST_F(PeerTest, TooShortForItsRecordIsAnError)
{
    Peer peer;

    peer.send(LinkMsg::ID, peer.address(), "short");

    EXPECT_THAT([&] { peer.expect<LinkMsg>(); },
                ThrowsMessage<std::runtime_error>("message 0x1234 has 5 payload bytes, not the expected 8"));
}

TEST_F(PeerTest, ExpectLeavesOtherMessagesInTheirOrder)
{
    Peer peer;
    peer.send(1, peer.address(), "a");
    peer.send(2, peer.address(), "b");
    peer.send(1, peer.address(), "c");

    EXPECT_EQ(peer.expect(2).text(), "b");
    EXPECT_EQ(peer.expectAny().text(), "a");
    EXPECT_EQ(peer.expectAny().text(), "c");
}

TEST_F(PeerTest, MissingMessageIsAnErrorThatTellsWhatArrived)
{
    Peer peer(0x0123);
    peer.send(0x1111, peer.address(), "abc");
    peer.expectAny();
    peer.send(0x2222, peer.address(), "abc");
    EXPECT_THAT([&] { peer.expectNothing(); }, ::testing::Throws<std::runtime_error>());

    EXPECT_THAT([&] { peer.expect(0x1111, shortBound); },
                ThrowsMessage<std::runtime_error>("peer: no message 0x1111 within 1 ms; not taken: 0x2222 (3 bytes, "
                                                  "from 0x0F010123)"));
}

TEST_F(PeerTest, NoMessageAtAllIsAnErrorThatTellsSo)
{
    Peer peer;

    EXPECT_THAT([&] { peer.expectAny(shortBound); },
                ThrowsMessage<std::runtime_error>("peer: no message within 1 ms; nothing has arrived"));
}

TEST_F(PeerTest, NothingIsExpectedAndNothingComes)
{
    Peer peer;

    EXPECT_NO_THROW(peer.expectNothing());
    EXPECT_NO_THROW(peer.expectNothing()) << "it leaves nothing of its own behind";
}

TEST_F(PeerTest, NothingIsExpectedButSomethingHasBeenSent)
{
    Peer peer(0x0123);
    peer.send(0x1234, peer.address());

    EXPECT_THAT(
        [&] { peer.expectNothing(); },
        ThrowsMessage<std::runtime_error>("peer: nothing was expected; not taken: 0x1234 (0 bytes, from 0x0F010123)"));
}

TEST_F(PeerTest, MessageThatCannotBeDeliveredIsAnError)
{
    Peer peer;

    EXPECT_THAT([&] { peer.send(0x1234, 0x0F010777); },
                ThrowsMessage<std::runtime_error>("message 0x1234 to 0x0F010777: not sent, status 2"));
}

TEST_F(PeerTest, TooLongPayloadIsAnError)
{
    Peer peer;

    EXPECT_THAT([&] { peer.send(0x1234, peer.address(), std::string(65536, 'x')); },
                ThrowsMessage<std::runtime_error>("message 0x1234: 65536 payload bytes are too many"));
}

TEST_F(PeerTest, MessagesThatNobodyTakesAreFreed)
{
    Peer peer;
    peer.send(0x1234, peer.address(), std::string(1000, 'x'));
    Message taken = [&] {
        peer.send(0x1235, peer.address(), "kept");
        return peer.expect(0x1235);
    }();

    EXPECT_EQ(taken.text(), "kept"); // the leak checker sees the other one
}

} // namespace
} // namespace dorn::testkit
