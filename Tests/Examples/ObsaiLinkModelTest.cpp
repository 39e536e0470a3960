// SPDX-License-Identifier: MIT
#include "ObsaiLinkModel.hpp"

#include <gmock/gmock.h>

#include <random>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::obsai;
using testing::ElementsAre;

class ObsaiLinkModelTest : public ::testing::Test {
protected:
    void bringUp()
    {
        m_link.near().setEnabled(true);
        settle();
        ASSERT_EQ(m_link.near().rxState(), ERxLinkState_Frame);
    }
    /// Steps until nothing moves. @return the receiver's states on the way
    std::vector<ERxLinkState> settle()
    {
        std::vector<ERxLinkState> states;
        while (m_link.step()) {
            if (states.empty() || states.back() != m_link.near().rxState()) {
                states.push_back(m_link.near().rxState());
            }
            if (++m_steps > 200) {
                ADD_FAILURE() << "it never comes to rest";
                break;
            }
        }
        return states;
    }

    ObsaiLinkModel m_link{100};
    int m_steps = 0;
};

TEST_F(ObsaiLinkModelTest, LinkThatIsSwitchedOffDoesNotMove)
{
    EXPECT_FALSE(m_link.step());
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Off);
}

TEST_F(ObsaiLinkModelTest, ReceiverGoesThroughEveryState)
{
    m_link.near().setEnabled(true);

    EXPECT_THAT(settle(), ElementsAre(ERxLinkState_Unsync, ERxLinkState_WaitForSeed, ERxLinkState_WaitForAck,
                                      ERxLinkState_WaitForIdle, ERxLinkState_WaitForFrame, ERxLinkState_Frame));
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Frame);
}

TEST_F(ObsaiLinkModelTest, TransmitterGoesThroughEveryState)
{
    m_link.near().setEnabled(true);
    std::vector<ETxLinkState> states{m_link.near().txState()};
    while (m_link.step()) {
        if (states.back() != m_link.near().txState()) {
            states.push_back(m_link.near().txState());
        }
    }

    EXPECT_THAT(states, ElementsAre(ETxLinkState_Off, ETxLinkState_IdleReq, ETxLinkState_IdleAck, ETxLinkState_Idle,
                                    ETxLinkState_Frame));
}

TEST_F(ObsaiLinkModelTest, BrokenReceiveFibreBeginsAnewAndRests)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Receive);
    settle();
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync);
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_IdleReq);

    m_link.setBrokenParts(0);
    settle();
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Frame);
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Frame);
}

TEST_F(ObsaiLinkModelTest, BrokenTransmitFibreIsSeenByWhatTheFarEndSends)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Transmit);
    settle();

    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync) << "a slave that hears nothing sends nothing";
}

TEST_F(ObsaiLinkModelTest, LightWithoutFramesIsNothing)
{
    bringUp();

    m_link.setBrokenParts(ELinkPart_Framing);
    settle();

    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync);
}

TEST_F(ObsaiLinkModelTest, EndThatIsSwitchedOffEndsBothStates)
{
    bringUp();

    m_link.near().setEnabled(false);

    EXPECT_FALSE(m_link.near().isEnabled());
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync);
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Off);
    settle();
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Off);
}

TEST_F(ObsaiLinkModelTest, TwoSlavesWaitForEachOther)
{
    m_link.near().setMode(ELinkAutoSynchronizationMode_Slave);
    m_link.near().setEnabled(true);

    EXPECT_FALSE(m_link.step());
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Off);
}

TEST_F(ObsaiLinkModelTest, NothingMovesByItselfWithoutAutomaticSynchronisation)
{
    m_link.near().setMode(ELinkAutoSynchronizationMode_Disabled);
    m_link.near().setEnabled(true);
    EXPECT_FALSE(m_link.step());

    m_link.near().setTxState(ETxLinkState_IdleReq); // by hand: the far end answers
    settle();
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_IdleReq);
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync);

    m_link.near().setRxState(ERxLinkState_Frame);
    m_link.setBrokenParts(ELinkPart_Receive);
    settle();
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Unsync) << "a receiver that hears nothing";
}

TEST_F(ObsaiLinkModelTest, StateThatIsSetByHandIsGoneOnFrom)
{
    bringUp();

    m_link.near().setRxState(ERxLinkState_Unsync);
    EXPECT_TRUE(m_link.step());
    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_WaitForSeed);
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_IdleReq);
    settle();

    EXPECT_EQ(m_link.near().rxState(), ERxLinkState_Frame);
    EXPECT_EQ(m_link.near().txState(), ETxLinkState_Frame);
}

/// Whatever happens to the fibres, and in whichever states both ends are then: when it is over they find each other.
TEST_F(ObsaiLinkModelTest, NoFaultLeavesTheEndsStuck)
{
    std::mt19937 random(1);
    for (int run = 0; run < 2000; ++run) {
        m_link.near().setEnabled(true);
        for (unsigned step = 0; step < random() % 30; ++step) {
            m_link.setBrokenParts(random() % 3 == 0 ? random() % (allLinkParts + 1) : 0);
            m_link.step();
        }

        m_link.setBrokenParts(0);
        m_steps = 0;
        settle();

        ASSERT_EQ(m_link.near().rxState(), ERxLinkState_Frame) << run;
        ASSERT_EQ(m_link.near().txState(), ETxLinkState_Frame) << run;
        m_link.near().setEnabled(run % 2 == 0);
    }
}

TEST_F(ObsaiLinkModelTest, PiIsWhatTheFibreDelays)
{
    EXPECT_EQ(m_link.pi(), 154U); // 500 ns
    EXPECT_EQ(ObsaiLinkModel(20).pi(), 31U);
}

} // namespace
} // namespace dorn::examples
