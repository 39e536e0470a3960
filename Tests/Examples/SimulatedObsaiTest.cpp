// SPDX-License-Identifier: MIT
#include "CallbackTo.hpp"
#include "SimulatedObsaiSynchronizer.hpp"

#include "InvalidParameterException.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::obsai;
using testing::ElementsAre;
using testing::IsEmpty;
using vel::hwapi::common::Worker;

const AbstractObsaiLink obsai0(0, "obsai0");
const AbstractObsaiLink obsai1(1, "obsai1");

/// The worker is not set up: events come at once.
class SimulatedObsaiTest : public ::testing::Test {
protected:
    using Callback = CallbackTo<AbstractObsaiLinkSynchronizerBif::AbstractLinkSyncCallback, LinkSyncCallbackParam>;

    SimulatedObsaiTest()
    {
        m_synchronizer.setRxLinkSynchronizationCallback(&m_onRx);
        m_synchronizer.setTxLinkSynchronizationCallback(&m_onTx);
        m_synchronizer.setPiMeasurementResultCallback(&m_onPi);
    }
    void settle()
    {
        while (m_links.step()) {
            m_synchronizer.tell();
        }
    }

    std::vector<ERxLinkState> m_rx;
    std::vector<ETxLinkState> m_tx;
    std::vector<LinkSyncCallbackParam> m_pi;
    Callback m_onRx{
        [this](const LinkSyncCallbackParam& event) { m_rx.push_back(event.getRxLinkSynchronizationState()); }};
    Callback m_onTx{
        [this](const LinkSyncCallbackParam& event) { m_tx.push_back(event.getTxLinkSynchronizationState()); }};
    Callback m_onPi{[this](const LinkSyncCallbackParam& event) { m_pi.push_back(event); }};
    Worker m_worker;
    ObsaiLinks m_links;
    SimulatedObsaiSynchronizer m_synchronizer{m_links, m_worker};
};

TEST_F(SimulatedObsaiTest, EachStateIsToldOnceAndPiWhenFramesAreReceived)
{
    m_synchronizer.enableLink(obsai1);
    settle();

    EXPECT_THAT(m_rx, ElementsAre(ERxLinkState_WaitForSeed, ERxLinkState_WaitForAck, ERxLinkState_WaitForIdle,
                                  ERxLinkState_WaitForFrame, ERxLinkState_Frame));
    EXPECT_THAT(m_tx, ElementsAre(ETxLinkState_IdleReq, ETxLinkState_IdleAck, ETxLinkState_Idle, ETxLinkState_Frame));
    EXPECT_THAT(m_pi, ElementsAre(LinkSyncCallbackParam(ERxLinkState_Frame, ETxLinkState_Frame, 154, obsai1)));
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(obsai1), ERxLinkState_Frame);
    EXPECT_EQ(m_synchronizer.getTxLinkSynchronizationState(obsai1), ETxLinkState_Frame);
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(obsai0), ERxLinkState_Unsync);
}

TEST_F(SimulatedObsaiTest, LinksMoveAtTheSameTime)
{
    m_synchronizer.enableLink(obsai0);
    m_synchronizer.enableLink(obsai1);
    while (m_synchronizer.getRxLinkSynchronizationState(obsai0) != ERxLinkState_Frame) {
        ASSERT_TRUE(m_links.step());
    }

    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(obsai1), ERxLinkState_Frame);
}

TEST_F(SimulatedObsaiTest, LinkThatIsDisabledIsToldToBeDown)
{
    m_synchronizer.enableLink(obsai0);
    EXPECT_TRUE(m_synchronizer.isLinkEnabled(obsai0));
    settle();
    m_rx.clear();
    m_tx.clear();

    m_synchronizer.disableLink(obsai0);
    m_synchronizer.tell();

    EXPECT_FALSE(m_synchronizer.isLinkEnabled(obsai0));
    EXPECT_THAT(m_rx, ElementsAre(ERxLinkState_Unsync));
    EXPECT_THAT(m_tx, ElementsAre(ETxLinkState_Off));
}

TEST_F(SimulatedObsaiTest, StatesAreSetByHandWithoutAutomaticSynchronisation)
{
    EXPECT_EQ(m_synchronizer.getAutoSynchronizationMode(obsai0), ELinkAutoSynchronizationMode_Master);
    m_synchronizer.setAutoSynchronizationMode(obsai0, ELinkAutoSynchronizationMode_Disabled);
    EXPECT_EQ(m_synchronizer.getAutoSynchronizationMode(obsai0), ELinkAutoSynchronizationMode_Disabled);
    m_synchronizer.enableLink(obsai0);
    settle();
    EXPECT_THAT(m_tx, IsEmpty());

    m_synchronizer.setTxLinkSynchronizationState(obsai0, ETxLinkState_Idle);
    m_synchronizer.setRxLinkSynchronizationState(obsai0, ERxLinkState_WaitForIdle);
    m_synchronizer.tell();

    EXPECT_THAT(m_tx, ElementsAre(ETxLinkState_Idle));
    EXPECT_THAT(m_rx, ElementsAre(ERxLinkState_WaitForIdle));
    EXPECT_EQ(m_synchronizer.getRxLinkSynchronizationState(obsai0), ERxLinkState_WaitForIdle);
}

TEST_F(SimulatedObsaiTest, LinkThatTheBoardDoesNotHaveIsRefused)
{
    EXPECT_THROW(m_synchronizer.enableLink(AbstractObsaiLink(2, "absent")),
                 vel::hwapi::common::InvalidParameterException);
}

} // namespace
} // namespace dorn::examples
