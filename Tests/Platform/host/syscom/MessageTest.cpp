// SPDX-License-Identifier: MIT
#include "AaConfigTag.h"
#include "SysComTest.hpp"
#include "eu/TestEu.hpp"

#include <cstddef>
#include <cstdint>

namespace dorn::host::test {
namespace {

using testkit::TestEu;
using testkit::TestNode;

class MessageTest : public SysComTest {};

TEST_F(MessageTest, NewMessageHasWhatItWasCreatedWith)
{
    void* message = AaSysComMsgCreate(0x12345678, 10, 0x0F011234);

    EXPECT_EQ(AaSysComMsgGetId(message), 0x12345678U);
    EXPECT_EQ(AaSysComMsgGetPayloadSize(message), 10);
    EXPECT_EQ(AaSysComMsgGetReceiver(message), 0x0F011234U);
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, SenderIsTheFirstCpidOfTheCallingEu)
{
    const TAaSysComCpid second = AaSysComUserRegister(0, AaProEuCurrent());
    ASSERT_NE(second, m_cpid);

    void* message = AaSysComMsgCreate(1, 0, 0);

    EXPECT_EQ(AaSysComMsgGetSender(message), address());
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, SenderIsNobodyWithoutACpid)
{
    TAaSysComSicad sender = 1;
    TestEu eu([&] {
        void* message = AaSysComMsgCreate(1, 0, 0);
        sender = AaSysComMsgGetSender(message);
        AaSysComMsgDestroy(&message);
    });
    eu.wait();

    EXPECT_EQ(sender, 0U);
}

TEST_F(MessageTest, SenderIsNobodyAfterTheFirstCpidHasBeenGivenUp)
{
    AaSysComUserDeregister(m_cpid);

    void* message = AaSysComMsgCreate(1, 0, 0);

    EXPECT_EQ(AaSysComMsgGetSender(message), 0U);
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, SetSenderChangesTheSender)
{
    void* message = AaSysComMsgCreate(1, 0, address());
    AaSysComMsgSetSender(message, addressOf(0x0777));
    ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);

    message = AaSysComMsgReceive(AA_NO_WAIT);

    EXPECT_EQ(AaSysComMsgGetSender(message), addressOf(0x0777));
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, SendSChangesTheSender)
{
    void* message = AaSysComMsgCreate(1, 0, address());
    ASSERT_EQ(AaSysComMsgSendS(&message, addressOf(0x0777)), EAaSysComStatus_Ok);

    message = AaSysComMsgReceive(AA_NO_WAIT);

    EXPECT_EQ(AaSysComMsgGetSender(message), addressOf(0x0777));
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, PayloadOfAnySizeArrivesWholeAndAligned)
{
    for (const std::size_t size : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, std::size_t{65535}}) {
        void* message = AaSysComMsgCreate(1, static_cast<std::uint16_t>(size), address());
        void* const payload = AaSysComMsgGetPayload(message);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(payload) % alignof(std::max_align_t), 0U);
        std::memset(payload, 0x5A, size);
        ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);

        message = AaSysComMsgReceive(AA_NO_WAIT);

        const std::string expected(size, 0x5A);
        ASSERT_EQ(AaSysComMsgGetPayloadSize(message), size);
        EXPECT_EQ(std::memcmp(AaSysComMsgGetPayload(message), expected.data(), size), 0);
        AaSysComMsgDestroy(&message);
    }
}

TEST_F(MessageTest, EmptyMessageHasNoPayload)
{
    ASSERT_EQ(sendEmpty(5, address()), EAaSysComStatus_Ok);

    void* message = AaSysComMsgReceive(AA_NO_WAIT);

    ASSERT_NE(message, nullptr);
    EXPECT_EQ(AaSysComMsgGetPayload(message), nullptr);
    EXPECT_EQ(AaSysComMsgGetPayloadSize(message), 0);
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, MessageWithinTheProcessIsHandedOverByPointer)
{
    void* message = AaSysComMsgCreate(1, 100, address());
    const void* const created = message;
    AaSysComMsgSend(&message);

    message = AaSysComMsgReceive(AA_NO_WAIT);

    EXPECT_EQ(message, created);
    AaSysComMsgDestroy(&message);
}

TEST_F(MessageTest, NullHandleIsPassedOver)
{
    void* null = nullptr;

    AaSysComMsgDestroy(nullptr);
    AaSysComMsgDestroy(&null);
    AaSysComMsgSetSender(nullptr, 1);

    EXPECT_EQ(AaSysComMsgGetPayload(nullptr), nullptr);
    EXPECT_EQ(AaSysComMsgGetPayloadSize(nullptr), 0);
    EXPECT_EQ(AaSysComMsgGetId(nullptr), 0U);
    EXPECT_EQ(AaSysComMsgGetSender(nullptr), 0U);
    EXPECT_EQ(AaSysComMsgGetReceiver(nullptr), 0U);
}

TEST_F(MessageTest, SendOfNothingIsRefusedAndLogged)
{
    void* null = nullptr;

    EXPECT_EQ(AaSysComMsgSend(nullptr), EAaSysComStatus_NoMessage);
    EXPECT_EQ(AaSysComMsgSend(&null), EAaSysComStatus_NoMessage);
    EXPECT_EQ(AaSysComMsgSendS(nullptr, 1), EAaSysComStatus_NoMessage);
    EXPECT_EQ(AaSysComMsgSendS(&null, 1), EAaSysComStatus_NoMessage);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>(4, "Error 0x0 Message not sent: there is none (sent or destroyed before?)"));
}

TEST_F(MessageTest, SecondSendOfAHandleIsRefused)
{
    void* message = AaSysComMsgCreate(1, 0, address());

    EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_NoMessage);
    EXPECT_EQ(takeId(), 1U);
    EXPECT_EQ(takeId(), 0U);
}

TEST_F(MessageTest, SendAfterDestroyIsRefused)
{
    void* message = AaSysComMsgCreate(1, 0, address());
    AaSysComMsgDestroy(&message);

    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_NoMessage);
}

TEST_F(MessageTest, UnknownReceiverIsReportedAndLogged)
{
    void* message = AaSysComMsgCreate(0x2A, 3, addressOf(0x0BAD));

    EXPECT_EQ(AaSysComMsgSendS(&message, 0x0F010042), EAaSysComStatus_NoReceiver);
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(m_log.texts(),
              std::vector<std::string>{"Warning 0x0 Message not sent: nobody holds the receiver's cpid (id=0x002A "
                                       "receiver=0x0F010BAD sender=0x0F010042)"});
}

TEST_F(MessageTest, NobodyReceivesAtCpidZero)
{
    EXPECT_EQ(sendEmpty(1, addressOf(0)), EAaSysComStatus_NoReceiver);
}

TEST_F(MessageTest, OtherNodeIsReportedAndLogged)
{
    void* message = AaSysComMsgCreate(0x2A, 3, AaSysComSicadGet(m_cpid, 0x0F02));

    EXPECT_EQ(AaSysComMsgSendS(&message, 0), EAaSysComStatus_NoRoute);
    EXPECT_EQ(m_log.count("Warning 0x0 Message not sent: there is no way to the receiver's node (id=0x002A "
                          "receiver=0x0F02" +
                          std::string("F000 sender=0x00000000)")),
              1U);
}

TEST_F(MessageTest, NodeIdHasSixteenBitsOfAnAddress)
{
    EXPECT_EQ(AaSysComSicadGet(0x1234, 0x0F01), 0x0F011234U);
    EXPECT_EQ(AaSysComSicadGet(0xFFFF, 0xABCD0001), 0x0001FFFFU);
}

TEST(OwnNodeTest, IsTheOneOfTheEnvironment)
{
    const TestNode node({.nodeId = 0x0A02});

    EXPECT_EQ(AaSysComGetOwnNid(), 0x0A02U);
}

TEST(OwnNodeTest, IsTheFirstWhenTheEnvironmentNamesNone)
{
    const TestNode node;

    EXPECT_EQ(AaSysComGetOwnNid(), 0x0F01U);
}

TEST(OwnNodeTest, NodeWithoutIdIsReachedUnderZeroAndUnderTheFirst)
{
    const TestNode node({.nodeId = 0});
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());

    EXPECT_EQ(AaSysComGetOwnNid(), 0U);
    EXPECT_EQ(sendEmpty(1, AaSysComSicadGet(cpid, 0)), EAaSysComStatus_Ok);
    EXPECT_EQ(sendEmpty(2, AaSysComSicadGet(cpid, 0x0F01)), EAaSysComStatus_Ok);
    EXPECT_EQ(sendEmpty(3, AaSysComSicadGet(cpid, 0x0F02)), EAaSysComStatus_NoRoute);
    EXPECT_EQ(takeId(), 1U);
    EXPECT_EQ(takeId(), 2U);
}

TEST(OwnNodeTest, NodeWithoutIdSendsAsTheFirst)
{
    const TestNode node({.nodeId = 0});
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());

    void* const message = AaSysComMsgCreate(1, 0, AaSysComSicadGet(0x0300, 0x0F02));

    EXPECT_EQ(AaSysComMsgGetSender(message), AaSysComSicadGet(cpid, 0x0F01));
    void* owned = message;
    AaSysComMsgDestroy(&owned);
}

TEST(NodeMapTest, BoardAndCpuOfANodeAreLookedUpInTheTags)
{
    const TestNode node;
    AaConfigTagSetU32("sys.nmap.0f02.board", 3);
    AaConfigTagSetU32("sys.nmap.0f02.cpu", 7);

    EXPECT_EQ(AaSysComNmapGetBoard(AaSysComSicadGet(0x1234, 0x0F02)), 3U);
    EXPECT_EQ(AaSysComNmapGetCpu(AaSysComSicadGet(0x1234, 0x0F02)), 7U);
    EXPECT_EQ(AaSysComNmapGetBoard(AaSysComSicadGet(0x1234, 0x0F03)), 0U);
    EXPECT_EQ(AaSysComNmapGetCpu(AaSysComSicadGet(0x1234, 0x0F03)), 0U);
}

TEST(OwnNodeTest, NodeWithAnIdIsNotReachedUnderZero)
{
    const TestNode node;
    const TAaSysComCpid cpid = AaSysComUserRegister(0, AaProEuCurrent());

    EXPECT_EQ(sendEmpty(1, AaSysComSicadGet(cpid, 0)), EAaSysComStatus_NoRoute);
}

} // namespace
} // namespace dorn::host::test
