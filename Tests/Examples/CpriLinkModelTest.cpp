// SPDX-License-Identifier: MIT
#include "CpriLinkModel.hpp"

#include <gtest/gtest.h>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::cpri;

class CpriLinkModelTest : public ::testing::Test {
protected:
    void bringUp()
    {
        m_link.setEnabled(true);
        settle();
        ASSERT_TRUE(m_link.receiver().isSynchronised());
    }
    /// Steps until nothing moves. @return how many steps have changed something
    int settle()
    {
        int steps = 0;
        while (m_link.step()) {
            ++steps;
            if (steps > 50) {
                ADD_FAILURE() << "it never comes to rest";
                return steps;
            }
        }
        return steps;
    }

    CpriLinkModel m_link{200};
};

TEST_F(CpriLinkModelTest, LinkThatIsSwitchedOffDoesNotMove)
{
    EXPECT_FALSE(m_link.step());
    EXPECT_EQ(m_link.receiver().state(), ERxLinkState_XACQ1);
    EXPECT_FALSE(m_link.hasHeard());
}

TEST_F(CpriLinkModelTest, LinkThatIsSwitchedOnComesUpAndRests)
{
    m_link.setEnabled(true);

    EXPECT_EQ(settle(), 4);
    EXPECT_TRUE(m_link.receiver().isSynchronised());
    EXPECT_EQ(m_link.heardSignals(), 0U);
    EXPECT_TRUE(m_link.hasHeard());
    EXPECT_FALSE(m_link.step());
}

TEST_F(CpriLinkModelTest, BrokenReceiveFibreIsLossOfSignal)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Receive);

    EXPECT_TRUE(m_link.step());
    EXPECT_TRUE(m_link.receiver().hasLostSignal());
    EXPECT_EQ(m_link.receiver().state(), ERxLinkState_XACQ1);
    EXPECT_FALSE(m_link.step());
    EXPECT_TRUE(m_link.hasHeard()) << "what was heard is not unheard";
}

TEST_F(CpriLinkModelTest, BrokenFramingIsLossOfFrameWithoutLossOfSignal)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Framing);
    settle();

    EXPECT_FALSE(m_link.receiver().hasLostSignal());
    EXPECT_TRUE(m_link.receiver().hasLostFrame());
}

TEST_F(CpriLinkModelTest, BrokenTransmitFibreIsReportedByTheFarEnd)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Transmit);
    settle();

    EXPECT_TRUE(m_link.receiver().isSynchronised());
    EXPECT_EQ(m_link.heardSignals(), ECpriSignal_Los + ECpriSignal_Lof + ECpriSignal_Rai);
}

TEST_F(CpriLinkModelTest, WhatTheFarEndReportsIsNotKnownWithoutSynchronisation)
{
    bringUp();
    m_link.setBrokenParts(ELinkPart_Transmit);
    settle();

    m_link.setBrokenParts(ELinkPart_Transmit | ELinkPart_Receive);
    settle();

    EXPECT_EQ(m_link.heardSignals(), 0U);
}

TEST_F(CpriLinkModelTest, FarEndReportsWhileItIsStillAcquiring)
{
    bringUp();
    m_link.setBrokenParts(ELinkPart_Transmit);
    settle();

    m_link.setBrokenParts(0);
    m_link.step(); // it sees light, and no frame yet
    m_link.step();

    EXPECT_EQ(m_link.heardSignals(), ECpriSignal_Lof + ECpriSignal_Rai);
    settle();
    EXPECT_EQ(m_link.heardSignals(), 0U);
}

TEST_F(CpriLinkModelTest, FarEndAcknowledgesAReset)
{
    bringUp();

    m_link.setSending(ECpriSignal_Reset, true);
    settle();
    EXPECT_TRUE(m_link.isSending(ECpriSignal_Reset));
    EXPECT_EQ(m_link.heardSignals(), ECpriSignal_Reset + ECpriSignal_Sdi);

    m_link.setSending(ECpriSignal_Reset, false);
    settle();
    EXPECT_FALSE(m_link.isSending(ECpriSignal_Reset));
    EXPECT_EQ(m_link.heardSignals(), 0U);
}

TEST_F(CpriLinkModelTest, OtherSignalsAreNotAnswered)
{
    bringUp();

    m_link.setSending(ECpriSignal_Los | ECpriSignal_Lof | ECpriSignal_Rai | ECpriSignal_Sdi, true);
    settle();

    EXPECT_EQ(m_link.heardSignals(), 0U);
    EXPECT_TRUE(m_link.isSending(ECpriSignal_Rai));
    EXPECT_FALSE(m_link.isSending(ECpriSignal_Reset));
}

TEST_F(CpriLinkModelTest, ControlBytesComeBackFromTheFarEnd)
{
    bringUp();

    m_link.sentBytes().at({16, 2}) = 0xA5;
    EXPECT_TRUE(m_link.step());
    EXPECT_EQ(m_link.receivedBytes().at({16, 2}), 0) << "they are on their way back";
    EXPECT_TRUE(m_link.step());

    EXPECT_EQ(m_link.receivedBytes().at({16, 2}), 0xA5);
    EXPECT_EQ(m_link.receivedBytes().at({16, 1}), 0);
    EXPECT_FALSE(m_link.step());
}

TEST_F(CpriLinkModelTest, ControlBytesWaitForTheLink)
{
    m_link.sentBytes().at({255, 9}) = 7;
    EXPECT_FALSE(m_link.step());

    bringUp();

    EXPECT_EQ(m_link.receivedBytes().at({255, 9}), 7);
}

TEST_F(CpriLinkModelTest, RoundTripIsThatOfBothFibres)
{
    EXPECT_EQ(m_link.roundTrip(), 614); // 2000 ns
    EXPECT_EQ(CpriLinkModel(15000).roundTrip(), 46080);
}

} // namespace
} // namespace dorn::examples
