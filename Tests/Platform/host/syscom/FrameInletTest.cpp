// SPDX-License-Identifier: MIT
#include "syscom/FrameInlet.hpp"
#include "syscom/Pack.hpp"

#include "PeerProcess.hpp"
#include "RawSender.hpp"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"

#include <atomic>
#include <unistd.h>

namespace dorn::host::test {
namespace {

constexpr TAaSysComCpid inletCpid = 0x0300;

/// A process that says it is some process.
struct SomePeer : Peer {
    explicit SomePeer(pid_t of, bool ended = false) : process(of), hasEnded(ended) {}
    pid_t pid() const override { return process; }
    bool isGone() const override { return hasEnded; }
    pid_t process;
    bool hasEnded;
};

class FrameInletTest : public SysComTest {
protected:
    static FrameHeader header(std::uint16_t payloadSize = 0) { return goodHeader(addressOf(inletCpid), payloadSize); }
    void arrive(const Bytes& frame, bool isCut = false) { m_inlet.onFrame(frame, isCut, m_peer); }
    void arriveFrom(TAaSysComSicad sender, const Peer& peer)
    {
        FrameHeader frame = header();
        frame.sender = sender;
        m_inlet.onFrame(frameOf(frame), false, peer);
    }
    void expectDropped(const std::string& reason, const std::string& fields)
    {
        EXPECT_EQ(takeId(), 0U);
        EXPECT_EQ(m_log.texts(),
                  std::vector<std::string>{"Warning 0x0 Dropped what process 4711 sent to cpid 0x0300: " + reason +
                                           " (" + fields + "; 1 dropped so far)"});
    }

    const SomePeer m_peer{4711};
    FrameInlet m_inlet{inletCpid, *eus::current()};
};

TEST_F(FrameInletTest, GoodFrameBecomesAMessage)
{
    FrameHeader frame = header(3);
    frame.id = 0xABCDEF01;
    frame.sender = addressOf(0x0042);
    arrive(frameOf(frame, 3));

    void* message = AaSysComMsgReceive(AA_NO_WAIT);

    EXPECT_EQ(AaSysComMsgGetId(message), 0xABCDEF01U);
    EXPECT_EQ(AaSysComMsgGetSender(message), addressOf(0x0042));
    EXPECT_EQ(AaSysComMsgGetReceiver(message), addressOf(inletCpid));
    ASSERT_EQ(AaSysComMsgGetPayloadSize(message), 3);
    EXPECT_EQ(std::memcmp(AaSysComMsgGetPayload(message), "ZZZ", 3), 0);
    EXPECT_TRUE(m_log.texts().empty());
    AaSysComMsgDestroy(&message);
}

TEST_F(FrameInletTest, GreatestFrameBecomesAMessage)
{
    arrive(frameOf(header(65535), 65535));

    void* message = AaSysComMsgReceive(AA_NO_WAIT);

    EXPECT_EQ(AaSysComMsgGetPayloadSize(message), 65535);
    AaSysComMsgDestroy(&message);
}

Pack packOf(const std::vector<FrameHeader>& headers)
{
    Pack pack;
    for (const FrameHeader& header : headers) {
        EXPECT_TRUE(pack.add(header, Bytes(header.payloadSize, std::byte{'P'})));
    }
    return pack;
}

std::vector<std::uint16_t> arrivedSizes()
{
    std::vector<std::uint16_t> sizes;
    while (void* message = AaSysComMsgReceive(AA_NO_WAIT)) {
        sizes.push_back(AaSysComMsgGetPayloadSize(message));
        AaSysComMsgDestroy(&message);
    }
    return sizes;
}

TEST_F(FrameInletTest, FramesOfAPackBecomeMessagesInTheirOrder)
{
    const Pack pack = packOf({header(3), header(0), header(2)});
    arrive(Bytes(pack.packet().begin(), pack.packet().end()));

    EXPECT_EQ(arrivedSizes(), (std::vector<std::uint16_t>{3, 0, 2}));
    EXPECT_TRUE(m_log.texts().empty());
}

TEST_F(FrameInletTest, LoneFrameOfAPackTravelsAsItIs)
{
    const Pack pack = packOf({header(65535)});

    EXPECT_EQ(pack.packet().size(), maxFrameSize);
    EXPECT_FALSE(isPack(pack.packet()));
}

TEST_F(FrameInletTest, PackTakesNoMoreThanTheGreatestFrameHas)
{
    Pack pack = packOf({header(100)});

    EXPECT_FALSE(pack.add(header(65535), Bytes(65535)));
    EXPECT_EQ(pack.count(), 1U);
    const std::size_t room = maxFrameSize - sizeof(PackHeader) - 2 * sizeof(FrameHeader) - 100;
    EXPECT_TRUE(pack.add(header(static_cast<std::uint16_t>(room)), Bytes(room)));
    EXPECT_EQ(pack.packet().size(), maxFrameSize);
}

TEST_F(FrameInletTest, BadFrameOfAPackIsDroppedAlone)
{
    FrameHeader forged = header(1);
    forged.magic ^= 1;
    const Pack pack = packOf({header(3), forged, header(2)});
    arrive(Bytes(pack.packet().begin(), pack.packet().end()));

    EXPECT_EQ(arrivedSizes(), (std::vector<std::uint16_t>{3, 2}));
    EXPECT_EQ(m_log.texts().size(), 1U);
}

TEST_F(FrameInletTest, PackThatEndsTooSoonBringsWhatIsWhole)
{
    const Pack pack = packOf({header(3), header(9)});
    arrive(Bytes(pack.packet().begin(), pack.packet().end() - 1));

    EXPECT_EQ(arrivedSizes(), (std::vector<std::uint16_t>{3}));
    EXPECT_EQ(m_log.texts().size(), 1U);
}

TEST_F(FrameInletTest, EmptyFrameIsDropped)
{
    arrive({});

    expectDropped("it is too short", "id=0x0000 receiver=0x00000000 sender=0x00000000, 0 bytes");
}

TEST_F(FrameInletTest, FrameShorterThanAHeaderIsDropped)
{
    arrive(Bytes(sizeof(FrameHeader) - 1, std::byte{0xFF}));

    expectDropped("it is too short", "id=0x0000 receiver=0x00000000 sender=0x00000000, 23 bytes");
}

TEST_F(FrameInletTest, CutFrameIsDropped)
{
    arrive(frameOf(header(65535), 65535), true);

    expectDropped("it is too long", "id=0x0000 receiver=0x00000000 sender=0x00000000, 65559 bytes");
}

TEST_F(FrameInletTest, WrongMagicIsDropped)
{
    FrameHeader frame = header();
    frame.magic ^= 1;
    arrive(frameOf(frame));

    expectDropped("it is no message", "id=0x0055 receiver=0x0F010300 sender=0x00000000, 24 bytes");
}

TEST_F(FrameInletTest, OtherVersionIsDropped)
{
    FrameHeader frame = header();
    frame.version = 2;
    arrive(frameOf(frame));

    expectDropped("it has another version", "id=0x0055 receiver=0x0F010300 sender=0x00000000, 24 bytes");
}

TEST_F(FrameInletTest, FrameShorterThanItsHeaderSaysIsDropped)
{
    arrive(frameOf(header(10), 9));

    expectDropped("its length is wrong", "id=0x0055 receiver=0x0F010300 sender=0x00000000, 33 bytes");
}

TEST_F(FrameInletTest, FrameLongerThanItsHeaderSaysIsDropped)
{
    arrive(frameOf(header(10), 11));

    expectDropped("its length is wrong", "id=0x0055 receiver=0x0F010300 sender=0x00000000, 35 bytes");
}

TEST_F(FrameInletTest, FrameForAnotherCpidIsDropped)
{
    FrameHeader frame = header();
    frame.receiver = addressOf(0x0301);
    arrive(frameOf(frame));

    expectDropped("it is for another receiver", "id=0x0055 receiver=0x0F010301 sender=0x00000000, 24 bytes");
}

TEST_F(FrameInletTest, FrameForAnotherNodeIsDropped)
{
    FrameHeader frame = header();
    frame.receiver = AaSysComSicadGet(inletCpid, 0x0F02);
    arrive(frameOf(frame));

    expectDropped("it is for another receiver", "id=0x0055 receiver=0x0F020300 sender=0x00000000, 24 bytes");
}

TEST_F(FrameInletTest, SenderOfAnotherNodeIsForged)
{
    arriveFrom(AaSysComSicadGet(0x0042, 0x0F02), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F020042, 24 bytes");
}

TEST_F(FrameInletTest, SenderHeldByTheReceivingProcessIsForged)
{
    ASSERT_EQ(AaSysComUserRegister(0x0042, AaProEuCurrent()), 0x0042);

    arriveFrom(addressOf(0x0042), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F010042, 24 bytes");
}

TEST_F(FrameInletTest, SenderHeldByAnotherProcessIsForged)
{
    PeerProcess holder;
    holder.ask({.order = Order::Register, .cpid = 0x0042});

    arriveFrom(addressOf(0x0042), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F010042, 24 bytes");
}

TEST_F(FrameInletTest, SenderHeldByTheSendingProcessIsBelieved)
{
    PeerProcess holder;
    holder.ask({.order = Order::Register, .cpid = 0x0042});

    arriveFrom(addressOf(0x0042), SomePeer(holder.pid()));

    EXPECT_EQ(takeId(), 0x55U);
}

TEST_F(FrameInletTest, FreeSenderIsBelieved)
{
    arriveFrom(addressOf(0x0042), m_peer);
    arriveFrom(addressOf(0), m_peer);
    arriveFrom(0, m_peer);

    EXPECT_EQ(takeId(), 0x55U);
    EXPECT_EQ(takeId(), 0x55U);
    EXPECT_EQ(takeId(), 0x55U);
}

TEST_F(FrameInletTest, SenderThatWasFreeIsForgedOnceAnotherProcessHoldsIt)
{
    arriveFrom(addressOf(0x0042), m_peer);
    EXPECT_EQ(takeId(), 0x55U);
    PeerProcess holder;
    ASSERT_EQ(holder.ask({.order = Order::Register, .cpid = 0x0042}).first, 0x0042U);

    arriveFrom(addressOf(0x0042), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F010042, 24 bytes");
}

TEST_F(FrameInletTest, SenderIsForgedOnceTheReceivingProcessHoldsIt)
{
    arriveFrom(addressOf(0x0042), m_peer);
    EXPECT_EQ(takeId(), 0x55U);
    AaSysComUserRegister(0x0042, AaProEuCurrent());

    arriveFrom(addressOf(0x0042), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F010042, 24 bytes");
}

TEST_F(FrameInletTest, OtherProcessIsNotBelievedBecauseTheHolderWas)
{
    PeerProcess holder;
    holder.ask({.order = Order::Register, .cpid = 0x0042});
    arriveFrom(addressOf(0x0042), SomePeer(holder.pid()));
    EXPECT_EQ(takeId(), 0x55U);

    arriveFrom(addressOf(0x0042), m_peer);

    expectDropped("its sender is forged", "id=0x0055 receiver=0x0F010300 sender=0x0F010042, 24 bytes");
}

TEST_F(FrameInletTest, WhatADeadProcessSentIsBelievedAfterAnotherTookOverItsCpid)
{
    PeerProcess successor;
    successor.ask({.order = Order::Register, .cpid = 0x0042});

    arriveFrom(addressOf(0x0042), SomePeer(4711, true));

    EXPECT_EQ(takeId(), 0x55U);
}

TEST_F(FrameInletTest, BadFramesAreLoggedAtPowersOfTwo)
{
    for (int count = 0; count < 100; ++count) {
        arrive({});
    }

    std::vector<std::string> expected;
    for (const int count : {1, 2, 4, 8, 16, 32, 64}) {
        expected.push_back("Warning 0x0 Dropped what process 4711 sent to cpid 0x0300: it is too short (id=0x0000 "
                           "receiver=0x00000000 sender=0x00000000, 0 bytes; " +
                           std::to_string(count) + " dropped so far)");
    }
    EXPECT_EQ(m_log.texts(), expected);
}

TEST_F(FrameInletTest, HasRoomUntilTheQueueIsFull)
{
    EXPECT_TRUE(m_inlet.hasRoom());
    for (int count = 0; count < MessageQueue::capacity; ++count) {
        arrive(frameOf(header()));
    }
    EXPECT_FALSE(m_inlet.hasRoom());

    EXPECT_EQ(takeId(), 0x55U);

    EXPECT_TRUE(m_inlet.hasRoom());
}

TEST_F(FrameInletTest, FrameHandedInByAnotherThreadArrives)
{
    testkit::TestEu other([this] { arrive(frameOf(header())); });
    other.wait();

    EXPECT_EQ(takeId(), 0x55U);
}

} // namespace
} // namespace dorn::host::test
