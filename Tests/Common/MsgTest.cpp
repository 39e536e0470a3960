// SPDX-License-Identifier: MIT
#include "Msg.hpp"

#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <cstring>

namespace vel::hwapi::common {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Reading {
    std::uint32_t sensor;
    std::uint16_t value;
    std::uint16_t unit;
};
using ReadingMsg = Msg<Reading, 0x1234>;

static_assert(ReadingMsg::ID == 0x1234);
static_assert(!std::is_polymorphic_v<ReadingMsg>);
static_assert(std::is_trivially_destructible_v<ReadingMsg>);
static_assert(std::is_trivially_copyable_v<ReadingMsg>);

class MsgTest : public testing::Test {
protected:
    dorn::test::RecordingPlatform m_platform;
};

TEST_F(MsgTest, SizeZeroCreatesExactlyTheRecord)
{
    ReadingMsg msg(0x0F010456, 0);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 8, 0xF010456)"));
    ASSERT_NE(msg.GetPayload(), nullptr);
    EXPECT_EQ(msg.operator->(), msg.GetPayload());
    const Reading zero{};
    EXPECT_EQ(std::memcmp(msg.GetPayload(), &zero, sizeof zero), 0);
    msg.Destroy();
}

TEST_F(MsgTest, SizeMakesRoomForATailThatIsNotCleared)
{
    ReadingMsg msg(0x0F010456, 12);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 12, 0xF010456)"));
    const auto* bytes = reinterpret_cast<const unsigned char*>(msg.GetPayload());
    for (unsigned index = 0; index < 12; ++index) {
        EXPECT_EQ(bytes[index], index < 8 ? 0 : 0xEE) << index;
    }
    msg.Destroy();
}

TEST_F(MsgTest, SizeIsCutTo16Bits)
{
    ReadingMsg msg(0x0F010456, 70000);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 4464, 0xF010456)"));
    msg.Destroy();
}

TEST_F(MsgTest, NegativeSizeIsCutTo16Bits)
{
    ReadingMsg msg(0x0F010456, -1);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 65535, 0xF010456)"));
    const auto* bytes = reinterpret_cast<const unsigned char*>(msg.GetPayload());
    EXPECT_EQ(msg->sensor, 0U);
    EXPECT_EQ(bytes[8], 0xEE);
    EXPECT_EQ(bytes[65534], 0xEE);
    msg.Destroy();
}

TEST_F(MsgTest, SizeBelowTheRecordClearsOnlyWhatThereIs)
{
    ReadingMsg msg(0x0F010456, 65536 + 3); // a write behind the three bytes is found by the address sanitizer

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 3, 0xF010456)"));
    const auto* bytes = reinterpret_cast<const unsigned char*>(msg.GetPayload());
    EXPECT_EQ(bytes[0] | bytes[1] | bytes[2], 0);
    msg.Destroy();
}

TEST_F(MsgTest, SizeOfAMultipleOf64KiHasNoPayload)
{
    ReadingMsg msg(0x0F010456, 65536);

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgCreate(4660, 0, 0xF010456)"));
    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(msg.GetId(), 0x1234U);
    msg.ClearPayload();
    msg.Destroy();
}

TEST_F(MsgTest, MessageThatCannotBeCreatedHasNoPayload)
{
    m_platform.canCreateMessages = false;

    ReadingMsg msg(0x0F010456, 0);

    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(msg.operator->(), nullptr);
    EXPECT_EQ(msg.GetId(), 0U);
    msg.ClearPayload();
}

TEST_F(MsgTest, ReceivedMessageIsReadWhateverItsId)
{
    void* received = m_platform.createMessage(0x4321, 8, 0x0F010456);
    const Reading reading{17, 3, 4};
    std::memcpy(AaSysComMsgGetPayload(received), &reading, sizeof reading);

    ReadingMsg msg(received);

    EXPECT_EQ(msg.GetPayload(), AaSysComMsgGetPayload(received));
    EXPECT_EQ(msg->sensor, 17U);
    EXPECT_EQ(msg->value, 3);
    EXPECT_EQ(msg->unit, 4);
    EXPECT_EQ(msg.GetId(), 0x4321U);
    EXPECT_THAT(m_platform.calls(), IsEmpty());
    AaSysComMsgDestroy(&received);
}

TEST_F(MsgTest, ReceivedMessageWithoutPayloadHasNone)
{
    void* received = m_platform.createMessage(0x1234, 0, 0x0F010456);

    ReadingMsg msg(received);

    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(msg.operator->(), nullptr);
    EXPECT_EQ(msg.GetId(), 0x1234U);
    EXPECT_EQ(msg.GetReceiver(), 0x0F010456U);
    msg.ClearPayload();
    AaSysComMsgDestroy(&received);
}

TEST_F(MsgTest, NullIsAMessageWithoutPayload)
{
    ReadingMsg msg(nullptr);

    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(msg.GetSender(), 0U);
    EXPECT_EQ(msg.GetReceiver(), 0U);
    EXPECT_EQ(msg.GetId(), 0U);
}

TEST_F(MsgTest, AddressesAreTheMessages)
{
    ReadingMsg msg(0x0F010456, 0);
    msg.SetSender(0x0F020789);

    EXPECT_EQ(msg.GetSender(), 0x0F020789U);
    EXPECT_EQ(msg.GetReceiver(), 0x0F010456U);
    EXPECT_EQ(msg.GetId(), 0x1234U);
    msg.Destroy();
}

TEST_F(MsgTest, ClearPayloadZeroesTheRecordAgain)
{
    ReadingMsg msg(0x0F010456, 0);
    msg->sensor = 5;
    msg->unit = 6;

    msg.ClearPayload();

    EXPECT_EQ(msg->sensor, 0U);
    EXPECT_EQ(msg->unit, 0);
    msg.Destroy();
}

TEST_F(MsgTest, SendGivesTheMessageAway)
{
    ReadingMsg msg(0x0F010456, 0);
    msg->sensor = 0x11111111;
    msg->value = 0x2222;
    msg.SetSender(0x0F020789);
    m_platform.clearCalls();

    msg.Send();

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("AaSysComMsgSend(4660, from 0xF020789 to 0xF010456, 1111111122220000)"));
    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(MsgTest, DestroyFreesTheMessage)
{
    ReadingMsg msg(0x0F010456, 0);
    m_platform.clearCalls();

    msg.Destroy();

    EXPECT_THAT(m_platform.calls(), ElementsAre("AaSysComMsgDestroy(4660)"));
    EXPECT_EQ(msg.GetPayload(), nullptr);
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(MsgTest, EndOfTheObjectNeitherSendsNorFrees)
{
    void* received = m_platform.createMessage(0x1234, 8, 0x0F010456);
    {
        const ReadingMsg wrapped(received);
        [[maybe_unused]] const ReadingMsg copy(wrapped);
    }
    EXPECT_THAT(m_platform.calls(), IsEmpty());
    EXPECT_EQ(m_platform.liveMessages(), 1U);
    AaSysComMsgDestroy(&received);
}

} // namespace
} // namespace vel::hwapi::common
