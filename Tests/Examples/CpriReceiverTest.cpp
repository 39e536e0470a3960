// SPDX-License-Identifier: MIT
#include "CpriReceiver.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::baseband::cpri;
using testing::ElementsAre;

constexpr auto XACQ1 = ERxLinkState_XACQ1;
constexpr auto XACQ2 = ERxLinkState_XACQ2;
constexpr auto XSYNC1 = ERxLinkState_XSYNC1;
constexpr auto XSYNC2 = ERxLinkState_XSYNC2;
constexpr auto HFNSYNC = ERxLinkState_HFNSYNC;

class CpriReceiverTest : public ::testing::Test {
protected:
    /// The states after one step each, with frames where there is a 1 and without where there is a 0.
    std::vector<ERxLinkState> states(const std::vector<int>& hasFrames)
    {
        std::vector<ERxLinkState> states;
        for (const int hasFrame : hasFrames) {
            m_receiver.step(true, hasFrame == 1);
            states.push_back(m_receiver.state());
        }
        return states;
    }

    CpriReceiver m_receiver;
};

TEST_F(CpriReceiverTest, ReceiverThatHasSeenNothingHasLostEverything)
{
    EXPECT_EQ(m_receiver.state(), XACQ1);
    EXPECT_TRUE(m_receiver.hasLostSignal());
    EXPECT_TRUE(m_receiver.hasLostFrame());
    EXPECT_FALSE(m_receiver.isSynchronised());
}

TEST_F(CpriReceiverTest, FramesLeadToSynchronisationStateByState)
{
    EXPECT_THAT(states({1, 1, 1, 1, 1}), ElementsAre(XACQ2, XSYNC1, XSYNC2, HFNSYNC, HFNSYNC));
    EXPECT_TRUE(m_receiver.isSynchronised());
}

TEST_F(CpriReceiverTest, FrameIsLostWhileItIsAcquired)
{
    m_receiver.step(true, true);
    EXPECT_FALSE(m_receiver.hasLostSignal());
    EXPECT_TRUE(m_receiver.hasLostFrame());
    m_receiver.step(true, true);
    EXPECT_FALSE(m_receiver.hasLostFrame());
    EXPECT_FALSE(m_receiver.isSynchronised());
}

TEST_F(CpriReceiverTest, FrameThatIsMissedWhileAcquiringBeginsAnew)
{
    EXPECT_THAT(states({1, 0, 1, 1, 0}), ElementsAre(XACQ2, XACQ1, XACQ2, XSYNC1, XACQ1));
}

TEST_F(CpriReceiverTest, OneMissedFrameIsForgivenAndTwoInARowAreNot)
{
    states({1, 1, 1, 1});

    EXPECT_THAT(states({0, 1, 1, 0, 0}), ElementsAre(XSYNC1, XSYNC2, HFNSYNC, XSYNC1, XACQ1));
}

TEST_F(CpriReceiverTest, FrameThatIsMissedBeforeTheNumberIsKnownGoesBackToo)
{
    EXPECT_THAT(states({1, 1, 1, 0}), ElementsAre(XACQ2, XSYNC1, XSYNC2, XSYNC1));
}

TEST_F(CpriReceiverTest, DarknessEndsEverythingAtOnce)
{
    states({1, 1, 1, 1});

    m_receiver.step(false, true);

    EXPECT_EQ(m_receiver.state(), XACQ1);
    EXPECT_TRUE(m_receiver.hasLostSignal());
    EXPECT_TRUE(m_receiver.hasLostFrame());
}

} // namespace
} // namespace dorn::examples
