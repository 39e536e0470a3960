// SPDX-License-Identifier: MIT
#include "HwapiAlarm.hpp"

#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <array>
#include <type_traits>
#include <vector>

namespace vel::hwapi::common {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

static_assert(!std::is_polymorphic_v<HwapiAlarm>);
static_assert(std::is_base_of_v<CHwapiException, HwapiAlarm::MsgSendingException>);

constexpr auto fault = static_cast<EFaultId>(4711);
constexpr std::array<std::uint8_t, 4> details{0xA1, 0xA2, 0xA3, 0xA4};

class HwapiAlarmTest : public testing::Test {
protected:
    /// The bytes that have been sent, in hexadecimal digits.
    std::string sentBytes() const
    {
        const auto sent = m_platform.calls("AaSysComMsgSendS(");
        return sent.size() == 1 ? sent[0].substr(sent[0].rfind(' ') + 1, sent[0].size() - sent[0].rfind(' ') - 2) : "";
    }
    std::string created() const
    {
        const auto calls = m_platform.calls("AaSysComMsgCreate(");
        return calls.size() == 1 ? calls[0] : std::to_string(calls.size()) + " messages";
    }

    dorn::test::RecordingPlatform m_platform;
    HwapiAlarm m_alarm{0x211, 0x20047};
};

TEST_F(HwapiAlarmTest, FaultIsLoggedMadeStampedAndSentInThisOrder)
{
    m_platform.tags["sys.unit.ownboard"] = std::string("\x03\x09", 2);

    m_alarm.sendAlarmMsg(fault, details.data(), details.size());

    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Warning 0x20047 Sending alarm for fault '4711'", "AaSysComSicadGet(0x4C1, 0xF01)",
                            "AaSysComSicadGet(0x211, 0xF01)", "AaSysComMsgCreate(11140, 20, 0xF0104C1)",
                            "AaConfigTagGetDefault(\"sys.unit.ownboard\", 10)", "AaMemUnRefDbg()",
                            "AaSysComMsgSendS(11140, from 0xF010211 to 0xF0104C1, "
                            "67120000"
                            "03000000"
                            "04000000"
                            "A1A2A3A4"
                            "00000000)"));
    EXPECT_EQ(m_platform.liveMessages(), 0U);
    EXPECT_EQ(m_platform.liveTagValues, 0U);
}

TEST_F(HwapiAlarmTest, FaultWithoutDetailsHas20Bytes)
{
    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 20, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "67120000100000000000000000000000"
                           "00000000");
}

TEST_F(HwapiAlarmTest, DetailsOfSizeZeroAreNone)
{
    m_alarm.sendAlarmMsg(fault, details.data(), 0);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 20, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "67120000100000000000000000000000"
                           "00000000");
}

TEST_F(HwapiAlarmTest, MessageHas16BytesMoreThanTheDetails)
{
    m_alarm.sendAlarmMsg(fault, details.data(), 1);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 17, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "671200001000000001000000A1"
                           "00000000");
}

TEST_F(HwapiAlarmTest, SizeWithoutDataMakesRoomAndTellsNone)
{
    m_alarm.sendAlarmMsg(fault, nullptr, 3);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 19, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "671200001000000000000000"
                           "00000000000000");
}

TEST_F(HwapiAlarmTest, SizeIsTakenModulo65536)
{
    const std::vector<std::uint8_t> data(65538, 0x55);

    m_alarm.sendAlarmMsg(fault, data.data(), 65538);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 18, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "6712000010000000020000005555"
                           "00000000");
}

TEST_F(HwapiAlarmTest, SizeOf65536IsNone)
{
    const std::vector<std::uint8_t> data(65536, 0x55);

    m_alarm.sendAlarmMsg(fault, data.data(), 65536);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 20, 0xF0104C1)");
    EXPECT_EQ(sentBytes(), "67120000100000000000000000000000"
                           "00000000");
}

TEST_F(HwapiAlarmTest, GreatestMessageIsSent)
{
    const std::vector<std::uint8_t> data(65519, 0x55);

    m_alarm.sendAlarmMsg(fault, data.data(), 65519);

    EXPECT_EQ(created(), "AaSysComMsgCreate(11140, 65535, 0xF0104C1)");
    EXPECT_THAT(sentBytes(), SizeIs(2 * 65535));
}

TEST_F(HwapiAlarmTest, MoreThanAMessageHoldsCannotBeMade)
{
    const std::vector<std::uint8_t> data(65535, 0x55);

    EXPECT_THROW(m_alarm.sendAlarmMsg(fault, data.data(), 65520), HwapiAlarm::MsgSendingException);
    EXPECT_THROW(m_alarm.sendAlarmMsg(fault, data.data(), 65535), HwapiAlarm::MsgSendingException);

    EXPECT_EQ(created(), "0 messages");
    EXPECT_THAT(m_platform.calls("AaSysComMsgSendS("), IsEmpty());
}

TEST_F(HwapiAlarmTest, MessageThatCannotBeMadeIsAnException)
{
    m_platform.canCreateMessages = false;

    try {
        m_alarm.sendAlarmMsg(fault, nullptr, 0);
        FAIL() << "nothing was thrown";
    } catch (const HwapiAlarm::MsgSendingException& exception) {
        EXPECT_STREQ(exception.what(), "Message sending failed");
        EXPECT_EQ(exception.getDescription(), "faile to allocate SICAP message");
        EXPECT_TRUE(exception.getFile().ends_with("HwapiAlarm.cpp")) << exception.getFile();
        EXPECT_GT(exception.getLine(), 0);
    }
    EXPECT_THAT(m_platform.calls(),
                ElementsAre("Warning 0x20047 Sending alarm for fault '4711'", "AaSysComSicadGet(0x4C1, 0xF01)",
                            "AaSysComSicadGet(0x211, 0xF01)", "AaSysComMsgCreate(11140, 20, 0xF0104C1)"));
}

TEST_F(HwapiAlarmTest, MessageWithoutPayloadIsDestroyedAndAnException)
{
    m_platform.canCreatePayloads = false;

    EXPECT_THROW(m_alarm.sendAlarmMsg(fault, nullptr, 0), HwapiAlarm::MsgSendingException);

    EXPECT_EQ(m_platform.calls().back(), "AaSysComMsgDestroy(11140)");
    EXPECT_EQ(m_platform.liveMessages(), 0U);
}

TEST_F(HwapiAlarmTest, BoardThatCannotBeReadIs16)
{
    m_platform.setResult("AaConfigTagGetDefault", 4);

    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_EQ(sentBytes(), "67120000100000000000000000000000"
                           "00000000");
    EXPECT_THAT(m_platform.calls("AaMemUnRefDbg"), IsEmpty());
}

TEST_F(HwapiAlarmTest, BoardThatIsReadWithoutAValueIs16)
{
    m_platform.tags["sys.unit.ownboard"] = "\x03";
    m_platform.canHandOutValues = false;

    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_EQ(sentBytes(), "67120000100000000000000000000000"
                           "00000000");
    EXPECT_THAT(m_platform.calls("AaMemUnRefDbg"), IsEmpty());
}

TEST_F(HwapiAlarmTest, BoardIsTheFirstByteAsUnsignedNumber)
{
    m_platform.tags["sys.unit.ownboard"] = "\xFE";

    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_EQ(sentBytes(), "67120000FE0000000000000000000000"
                           "00000000");
}

TEST_F(HwapiAlarmTest, ResultOfTheSendIsNotExamined)
{
    m_platform.setResult("AaSysComMsgSendS", EAaSysComStatus_NoReceiver);

    EXPECT_NO_THROW(m_alarm.sendAlarmMsg(fault, nullptr, 0));

    EXPECT_THAT(m_platform.calls("Error"), IsEmpty());
}

TEST_F(HwapiAlarmTest, FaultOutsideTheCatalogueIsSentAsItIs)
{
    m_alarm.sendAlarmMsg(EFaultId_Widest, nullptr, 0);

    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre("Warning 0x20047 Sending alarm for fault '2147483647'"));
    EXPECT_TRUE(sentBytes().starts_with("FFFFFF7F")) << sentBytes();
}

TEST_F(HwapiAlarmTest, AddressesAreOfTheOwnNode)
{
    m_platform.nid = 0x0F22;

    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_THAT(m_platform.calls("AaSysComMsgSendS(11140, from 0xF220211 to 0xF2204C1, "), SizeIs(1));
}

TEST_F(HwapiAlarmTest, AddressesAreOfTheOwnNodeAlsoWithoutNodeId)
{
    m_platform.nid = 0;

    m_alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_THAT(m_platform.calls("AaSysComMsgSendS(11140, from 0x211 to 0x4C1, "), SizeIs(1));
}

TEST_F(HwapiAlarmTest, SenderAndFeatureCanBeSetLater)
{
    HwapiAlarm alarm;
    alarm.sendAlarmMsg(fault, nullptr, 0);
    alarm.setSenderCpid(0xFFFF);
    alarm.setPrintFeature(0x20009);
    alarm.sendAlarmMsg(fault, nullptr, 0);

    EXPECT_THAT(m_platform.calls("Warning"), ElementsAre("Warning 0x0 Sending alarm for fault '4711'",
                                                         "Warning 0x20009 Sending alarm for fault '4711'"));
    const auto sent = m_platform.calls("AaSysComMsgSendS(");
    ASSERT_THAT(sent, SizeIs(2));
    EXPECT_TRUE(sent[0].starts_with("AaSysComMsgSendS(11140, from 0xF010000 to 0xF0104C1, ")) << sent[0];
    EXPECT_TRUE(sent[1].starts_with("AaSysComMsgSendS(11140, from 0xF01FFFF to 0xF0104C1, ")) << sent[1];
}

} // namespace
} // namespace vel::hwapi::common
