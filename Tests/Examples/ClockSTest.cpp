// SPDX-License-Identifier: MIT
#include "ClockS.hpp"

#include "AaConfigTag.h"
#include "ClimateMessages.hpp"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "PassTime.hpp"
#include "Peer.hpp"
#include "ServiceUnderTest.hpp"
#include "rad/ERadHwapi.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <string>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::phaselockstatusmonitor;
using namespace vel::hwapi::common::bif::swpllstatemonitor;
using namespace vel::hwapi::common::bif::systemtimer;
using testing::ElementsAre;
using testkit::Peer;
using testkit::ServiceUnderTest;

class ClockSTest : public testkit::NodeTest {
protected:
    ClockSTest() { EXPECT_TRUE(m_running.waitUntilReady()); }

    SClockShowResp show()
    {
        m_hands.send<ClockShowReqMsg>(m_running.address(), {5});
        const auto answer = m_hands.expect<ClockShowRespMsg>();
        EXPECT_EQ(answer->transactionId, 5U);
        return *answer;
    }
    std::uint32_t act(std::uint32_t action, double amount = 0)
    {
        m_hands.send<ClockActReqMsg>(m_running.address(), {6, action, amount});
        const auto answer = m_hands.expect<ClockActRespMsg>();
        EXPECT_EQ(answer->transactionId, 6U);
        return answer->status;
    }
    template <class Condition>
    bool shows(const Condition& condition)
    {
        return passTimeUntil(m_clock, [&] { return condition(show()); });
    }
    bool showsPll(ESwPllState state)
    {
        return shows([state](const SClockShowResp& clock) { return clock.pllState == state; });
    }
    bool locks()
    {
        return shows([](const SClockShowResp& clock) {
            return clock.pllState == ESwPllState_TrackMax && clock.phaseLockStatus == EPhaseLockStatus_Ok &&
                   clock.timerState == ETimerSyncState_InSync;
        });
    }

    testkit::ManualClock m_clock;
    ClockS m_clocks;
    ServiceUnderTest m_running{m_clocks};
    Peer m_hands{0x0301};
};

TEST_F(ClockSTest, ClockAcquiresAndTracks)
{
    EXPECT_TRUE(showsPll(ESwPllState_Acquire0));
    const SClockShowResp cold = show();
    EXPECT_EQ(cold.timerState, ETimerSyncState_OutOfSync);
    EXPECT_EQ(cold.hasReference, 1U);
    EXPECT_LT(cold.ocxoTemperature, 84000);
    EXPECT_GT(cold.ovenCurrent, 120U);

    EXPECT_TRUE(locks());

    const SClockShowResp warm = show();
    EXPECT_LT(std::fabs(warm.timeError), 100);
    EXPECT_EQ(warm.dacStatus, 1U);
    EXPECT_EQ(warm.areSensorsOk, 1U);
    EXPECT_GT(warm.ocxoTemperature, 84000);
    EXPECT_NEAR(warm.outerTemperature, 60000, 1000);
    EXPECT_NE(warm.controlValue, OcxoModel::factoryControlValue);
}

TEST_F(ClockSTest, SystemTimerWaitsUntilThePllTracks)
{
    EXPECT_TRUE(shows([](const SClockShowResp& clock) {
        EXPECT_TRUE(clock.timerState == ETimerSyncState_OutOfSync || clock.pllState >= ESwPllState_TrackMed);
        return clock.timerState == ETimerSyncState_InSync;
    }));
}

TEST_F(ClockSTest, LostReferenceIsHeldOverWhileTheTimeDrifts)
{
    ASSERT_TRUE(locks());

    EXPECT_EQ(act(EClockAction_LoseReference), EClockActStatus_Done);

    EXPECT_TRUE(showsPll(ESwPllState_Holdover));
    EXPECT_EQ(show().hasReference, 0U);
    const std::int32_t held = show().controlValue;
    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.timerState == ETimerSyncState_OutOfSync; }));
    EXPECT_GT(std::fabs(show().timeError), 1500);
    EXPECT_EQ(show().controlValue, held);
}

TEST_F(ClockSTest, ReferenceThatIsBackIsFollowedAgain)
{
    ASSERT_TRUE(locks());
    act(EClockAction_LoseReference);
    ASSERT_TRUE(shows([](const SClockShowResp& clock) { return std::fabs(clock.timeError) > 300; }));

    EXPECT_EQ(act(EClockAction_RestoreReference), EClockActStatus_Done);

    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.phaseLockStatus == EPhaseLockStatus_Exceed; }));
    EXPECT_TRUE(locks());
    EXPECT_LT(std::fabs(show().timeError), 100);
}

TEST_F(ClockSTest, FrequencyJumpIsFollowed)
{
    ASSERT_TRUE(locks());
    const std::int32_t before = show().controlValue;

    EXPECT_EQ(act(EClockAction_Jump, 30), EClockActStatus_Done);
    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.phaseLockStatus == EPhaseLockStatus_Exceed; }));

    EXPECT_TRUE(locks());
    EXPECT_NEAR(show().controlValue, before - 3000, 1000);
}

TEST_F(ClockSTest, JumpThatTheDacCannotTakeBackIsToldByItsStatus)
{
    ASSERT_TRUE(locks());

    act(EClockAction_Jump, -greatestClockJump);

    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.dacStatus == 0; }));
}

TEST_F(ClockSTest, LostSensorsAreTold)
{
    ASSERT_TRUE(shows([](const SClockShowResp& clock) { return clock.areSensorsOk == 1; }));

    EXPECT_EQ(act(EClockAction_LoseSensors), EClockActStatus_Done);
    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.areSensorsOk == 0; }));
    EXPECT_EQ(act(EClockAction_RestoreSensors), EClockActStatus_Done);
    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.areSensorsOk == 1; }));
}

TEST_F(ClockSTest, OscillatorIsCalibratedInTheField)
{
    ASSERT_EQ(AaConfigRadSetValue(ERadHwapi_CLOCKS, 1), 0);
    EXPECT_TRUE(
        shows([](const SClockShowResp& clock) { return clock.calibrationStatus == EClockCalibrationStatus_Finished; }));

    EXPECT_TRUE(m_log.waitFor("Info 0x2003f Clock calibration: finished"));
    EXPECT_EQ(m_log.count("Info 0x2003f Clock calibration: ongoing"), 1U);
    EXPECT_EQ(m_log.count("Info 0x2003f Clock calibration data: ok"), 1U);
}

TEST_F(ClockSTest, CalibrationThatIsBrokenOffBeginsAnew)
{
    const auto isOngoing = [](const SClockShowResp& clock) {
        return clock.calibrationStatus == EClockCalibrationStatus_Ongoing;
    };
    ASSERT_TRUE(shows(isOngoing));

    act(EClockAction_LoseReference);
    EXPECT_TRUE(shows(
        [](const SClockShowResp& clock) { return clock.calibrationStatus == EClockCalibrationStatus_NotStarted; }));
    act(EClockAction_RestoreReference);

    EXPECT_TRUE(shows(isOngoing));
}

TEST_F(ClockSTest, AirIsThatOfTheBoardsTag)
{
    ASSERT_EQ(AaConfigTagSetU32(ambientTag, 65), EAaConfigTagStatus_Ok);

    EXPECT_TRUE(shows([](const SClockShowResp& clock) { return clock.ovenCurrent < 45; })) << "less to be heated";
}

TEST_F(ClockSTest, EventsAreLogged)
{
    ASSERT_EQ(AaConfigRadSetValue(ERadHwapi_CLOCKS, 1), 0);
    ASSERT_TRUE(locks());

    for (const char* const text : {"PLL: acquire1", "PLL: acquire2", "PLL: acquire3", "PLL: track-med",
                                   "PLL: track-max", "high-pass filter: may be updated", "system timer: synchronizing",
                                   "system timer: in-sync", "time error: ok"}) {
        EXPECT_TRUE(m_log.waitFor(std::string("Info 0x2003f Clock ") + text)) << text;
    }
}

TEST_F(ClockSTest, WhatCannotBeDoneIsRefused)
{
    EXPECT_EQ(act(EClockAction_RestoreReference), EClockActStatus_SoAlready);
    EXPECT_EQ(act(EClockAction_LoseReference), EClockActStatus_Done);
    EXPECT_EQ(act(EClockAction_LoseReference), EClockActStatus_SoAlready);
    EXPECT_EQ(act(EClockAction_RestoreSensors), EClockActStatus_SoAlready);
    EXPECT_EQ(act(EClockAction_LoseSensors), EClockActStatus_Done);
    EXPECT_EQ(act(EClockAction_LoseSensors), EClockActStatus_SoAlready);
    EXPECT_EQ(act(EClockAction_Jump, 1000), EClockActStatus_Done);
    EXPECT_EQ(act(EClockAction_Jump, 1000.1), EClockActStatus_BadAmount);
    EXPECT_EQ(act(EClockAction_Jump, -1000.1), EClockActStatus_BadAmount);
    EXPECT_EQ(act(EClockAction_Jump, std::numeric_limits<double>::quiet_NaN()), EClockActStatus_BadAmount);
    EXPECT_EQ(act(0), EClockActStatus_NoSuchAction);
    EXPECT_EQ(act(6), EClockActStatus_NoSuchAction);
}

TEST_F(ClockSTest, AnswerWithoutMemoryIsLogged)
{
    m_log.clear(); // of what it has said at its start
    {
        const testkit::FailEvery<AaSysComMsgCreate> noMemory;
        m_hands.send<ClockShowReqMsg>(m_running.address(), {5});
        m_hands.send<ClockActReqMsg>(m_running.address(), {6, EClockAction_LoseReference, 0});
        m_running.sync();
    }

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x2003f No memory to answer 0x0F010301",
                                           "Error 0x2003f No memory to answer 0x0F010301"));
}

} // namespace
} // namespace dorn::examples
