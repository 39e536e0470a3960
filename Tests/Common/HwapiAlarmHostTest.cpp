// SPDX-License-Identifier: MIT
// Alarms on the host's platform.
#include "HwapiAlarm.hpp"

#include "AaConfigTag.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "Peer.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstring>

namespace vel::hwapi::common {
namespace {

using dorn::testkit::FailNth;
using dorn::testkit::Message;
using dorn::testkit::NodeTest;
using dorn::testkit::Peer;
using testing::Contains;
using testing::ElementsAre;

class HwapiAlarmHostTest : public NodeTest {
protected:
    Peer m_sender{0x211};
    HwapiAlarm m_alarm{0x211, 0x20047};
};

TEST_F(HwapiAlarmHostTest, FaultReachesTheFaultManager)
{
    ASSERT_EQ(AaConfigTagSetU32("sys.unit.ownboard", 5), EAaConfigTagStatus_Ok);
    Peer manager(0x4C1);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, "fan 2", 5);

    const Message fault = manager.expect(11140);
    EXPECT_EQ(fault.sender(), 0x0F010211U);
    ASSERT_EQ(fault.payload().size(), 21U);
    EXPECT_EQ(fault.as<SHwapiFaultInd>().faultId, EFaultId_FanFailure);
    EXPECT_EQ(fault.as<SHwapiFaultInd>().boardNumber, 5U);
    EXPECT_EQ(fault.as<SHwapiFaultInd>().detailSize, 5U);
    EXPECT_EQ(fault.text().substr(12), std::string("fan 2\0\0\0\0", 9));
    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20047 Sending alarm for fault '2'"));
}

TEST_F(HwapiAlarmHostTest, BoardWithoutNumberIs16)
{
    Peer manager(0x4C1);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);

    const Message fault = manager.expect(11140);
    ASSERT_EQ(fault.payload().size(), 20U);
    EXPECT_EQ(fault.as<SHwapiFaultInd>().boardNumber, 16U);
    EXPECT_EQ(fault.as<SHwapiFaultInd>().detailSize, 0U);
}

TEST_F(HwapiAlarmHostTest, EmptyBoardNumberIs0)
{
    ASSERT_EQ(AaConfigTagSet("sys.unit.ownboard", "", 0), EAaConfigTagStatus_Ok);
    Peer manager(0x4C1);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);

    EXPECT_EQ(manager.expect(11140).as<SHwapiFaultInd>().boardNumber, 0U);
}

TEST_F(HwapiAlarmHostTest, BoardNumberThatCannotBeReadIs16)
{
    ASSERT_EQ(AaConfigTagSetU32("sys.unit.ownboard", 5), EAaConfigTagStatus_Ok);
    const FailNth<AaConfigTagGetDefault> broken(1);
    Peer manager(0x4C1);

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);

    EXPECT_EQ(manager.expect(11140).as<SHwapiFaultInd>().boardNumber, 16U);
}

TEST_F(HwapiAlarmHostTest, GreatestDetailsArriveWhole)
{
    Peer manager(0x4C1);
    const std::string details(65519, 'x');

    m_alarm.sendAlarmMsg(EFaultId_FanFailure, details.data(), 65519);

    const Message fault = manager.expect(11140);
    EXPECT_EQ(fault.payload().size(), 65535U);
    EXPECT_EQ(fault.text().substr(12, 65519), details);
}

TEST_F(HwapiAlarmHostTest, AbsentFaultManagerIsThePlatformsWarning)
{
    EXPECT_NO_THROW(m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0));

    EXPECT_THAT(m_log.texts(), ElementsAre("Warning 0x20047 Sending alarm for fault '2'",
                                           "Warning 0x0 Message not sent: nobody holds the receiver's cpid (id=0x2B84 "
                                           "receiver=0x0F0104C1 sender=0x0F010211)"));
}

TEST_F(HwapiAlarmHostTest, FaultManagerThatReturnsIsFoundAgain)
{
    {
        Peer manager(0x4C1);
        m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0);
        manager.expect(11140);
    }
    m_alarm.sendAlarmMsg(EFaultId_DspFailure, nullptr, 0);
    Peer manager(0x4C1);

    m_alarm.sendAlarmMsg(EFaultId_FpgaFailure, nullptr, 0);

    EXPECT_EQ(manager.expect(11140).as<SHwapiFaultInd>().faultId, EFaultId_FpgaFailure);
    manager.expectNothing();
}

TEST_F(HwapiAlarmHostTest, NoMemoryForTheMessageIsAnException)
{
    const FailNth<AaSysComMsgCreate> noMemory(1);

    EXPECT_THROW(m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0), HwapiAlarm::MsgSendingException);
}

TEST_F(HwapiAlarmHostTest, MessageWithoutPayloadIsAnExceptionAndFreed)
{
    const FailNth<AaSysComMsgGetPayload> noPayload(1);
    const dorn::testkit::CountCalls<AaSysComMsgDestroy> destroyed;

    EXPECT_THROW(m_alarm.sendAlarmMsg(EFaultId_FanFailure, nullptr, 0), HwapiAlarm::MsgSendingException);

    EXPECT_EQ(destroyed.count(), 1U);
}

} // namespace
} // namespace vel::hwapi::common
