// SPDX-License-Identifier: MIT
#include "SfpS.hpp"

#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "PassTime.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "rad/ERadHwapi.h"

#include <cstring>
#include <gmock/gmock.h>
#include <vector>

namespace dorn::examples {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testkit::Peer;
using testkit::ServiceUnderTest;

class SfpSTest : public testkit::NodeTest {
protected:
    SfpSTest() { EXPECT_TRUE(m_running.waitUntilReady()); }

    std::vector<SSfpCage> show()
    {
        m_hands.send<SfpShowReqMsg>(m_running.address(), {5});
        const auto answer = m_hands.expect<SfpShowRespMsg>();
        EXPECT_EQ(answer->transactionId, 5U);
        std::vector<SSfpCage> cages(answer->cageCount);
        EXPECT_EQ(answer.payload().size(), sizeof(SSfpShowResp) + cages.size() * sizeof(SSfpCage));
        std::memcpy(cages.data(), answer.payload().data() + sizeof(SSfpShowResp), cages.size() * sizeof(SSfpCage));
        return cages;
    }
    std::uint32_t plug(std::uint32_t cage, bool isPlugged)
    {
        m_hands.send<SfpPlugReqMsg>(m_running.address(), {6, cage, isPlugged ? 1U : 0U});
        const auto answer = m_hands.expect<SfpPlugRespMsg>();
        EXPECT_EQ(answer->transactionId, 6U);
        return answer->status;
    }

    testkit::ManualClock m_clock;
    SfpS m_sfp;
    ServiceUnderTest m_running{m_sfp};
    Peer m_hands{0x0301};
};

TEST_F(SfpSTest, CagesAreShown)
{
    const std::vector<SSfpCage> cages = show();

    ASSERT_EQ(cages.size(), 4U);
    EXPECT_EQ(cages[1].cage, 1U);
    EXPECT_EQ(cages[1].physicalLinkId, 1U);
    EXPECT_EQ(cages[1].module, ESfpModule_Empty);
    EXPECT_EQ(cages[1].isDetected, 0U);
    EXPECT_EQ(cages[1].eventCount, 0U);
    EXPECT_EQ(cages[3].physicalLinkId, 0xFFU);
    EXPECT_FALSE(awaitedTime(m_clock)) << "nothing moves";
}

TEST_F(SfpSTest, ModuleThatIsPluggedIsDetectedAndThenNothingMoves)
{
    EXPECT_EQ(plug(1, true), ESfpPlugStatus_Done);
    EXPECT_EQ(show()[1].module, ESfpModule_Starting);

    EXPECT_TRUE(passTimeUntil(m_clock, [this] { return show()[1].isDetected == 1; }));

    const std::vector<SSfpCage> cages = show();
    EXPECT_EQ(cages[1].module, ESfpModule_Ready);
    EXPECT_EQ(cages[1].eventCount, 1U);
    EXPECT_EQ(cages[0].eventCount, 0U);
    EXPECT_FALSE(awaitedTime(m_clock));
}

TEST_F(SfpSTest, ModuleThatIsPulledIsGone)
{
    plug(3, true);
    ASSERT_TRUE(passTimeUntil(m_clock, [this] { return show()[3].isDetected == 1; }));

    EXPECT_EQ(plug(3, false), ESfpPlugStatus_Done);

    EXPECT_EQ(show()[3].module, ESfpModule_Empty);
    EXPECT_TRUE(passTimeUntil(m_clock, [this] { return show()[3].isDetected == 0; }));
    EXPECT_EQ(show()[3].eventCount, 2U);
}

TEST_F(SfpSTest, WhatCannotBeDoneIsRefused)
{
    EXPECT_EQ(plug(4, true), ESfpPlugStatus_NoSuchCage);
    EXPECT_EQ(plug(0xFFFFFFFF, false), ESfpPlugStatus_NoSuchCage);
    EXPECT_EQ(plug(0, false), ESfpPlugStatus_SoAlready);
    EXPECT_EQ(plug(0, true), ESfpPlugStatus_Done);
    EXPECT_EQ(plug(0, true), ESfpPlugStatus_SoAlready);
}

TEST_F(SfpSTest, EventsAreLoggedOnTheirOwnThread)
{
    ASSERT_EQ(AaConfigRadSetValue(ERadHwapi_SFP, 1), 0);
    plug(2, true);

    EXPECT_TRUE(
        passTimeUntil(m_clock, [this] { return m_log.count("Info 0x200a8 SFP module of link 2 plugged") == 1; }));

    for (const host::LogLine& line : m_log.lines()) {
        if (line.text == "SFP module of link 2 plugged") {
            EXPECT_EQ(line.euName, "BoundaryIf");
        }
    }
    plug(2, false);
    EXPECT_TRUE(m_log.waitFor("Info 0x200a8 SFP module of link 2 pulled"));
}

TEST_F(SfpSTest, MissingTimerIsLoggedAndTheNextPluggingTriesAgain)
{
    {
        const testkit::FailEvery<AaTimerArm> noTimer;
        EXPECT_EQ(plug(0, true), ESfpPlugStatus_Done);
    }
    EXPECT_THAT(m_log.texts(), Contains("Error 0x200a8 No timer: the simulated hardware stands still"));
    EXPECT_FALSE(awaitedTime(m_clock));

    plug(1, true);

    EXPECT_TRUE(passTimeUntil(m_clock, [this] { return show()[0].isDetected == 1 && show()[1].isDetected == 1; }));
}

TEST_F(SfpSTest, OneTimerServesAllModulesThatStart)
{
    const testkit::CountCalls<AaTimerArm> armed;

    plug(0, true);
    plug(1, true);
    plug(3, true);

    EXPECT_EQ(armed.count(), 1U);
    EXPECT_TRUE(passTimeUntil(m_clock, [this] { return show()[3].isDetected == 1; }));
}

TEST_F(SfpSTest, AnswerWithoutMemoryIsLogged)
{
    m_log.clear(); // of what it has said at its start
    {
        const testkit::FailEvery<AaSysComMsgCreate> noMemory;
        m_hands.send<SfpShowReqMsg>(m_running.address(), {5});
        m_hands.send<SfpPlugReqMsg>(m_running.address(), {6, 0, 1});
        m_running.sync();
    }

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x200a8 No memory to answer 0x0F010301",
                                           "Error 0x200a8 No memory to answer 0x0F010301"));
}

} // namespace
} // namespace dorn::examples
