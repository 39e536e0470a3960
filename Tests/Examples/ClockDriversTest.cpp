// SPDX-License-Identifier: MIT
// The PLL's monitor, the system timer and the calibration in the field.
#include "CallbackTo.hpp"
#include "FieldCalibration.hpp"
#include "SimulatedSwPllMonitor.hpp"
#include "SimulatedSystemTimer.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common::bif::swpllstatemonitor;
using namespace vel::hwapi::common::bif::systemtimer;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using vel::hwapi::common::Worker;

/// The worker is not set up: events come at once.
class SimulatedSwPllMonitorTest : public ::testing::Test {
protected:
    using Callback =
        CallbackTo<AbstractSwPllStateMonitorBif::AbstractSwPllStateMonitorCallback, SwPllStateMonitorCallbackParam>;

    SimulatedSwPllMonitorTest() { m_monitor.setSwPllStateMonitorCallback(&m_callback); }

    std::vector<SwPllStateMonitorCallbackParam> m_events;
    Callback m_callback{[this](const SwPllStateMonitorCallbackParam& event) { m_events.push_back(event); }};
    Worker m_worker;
    SimulatedSwPllMonitor m_monitor{m_worker};
};

TEST_F(SimulatedSwPllMonitorTest, StatesAreTold)
{
    m_monitor.swPllStateChanged(ESwPllState_TrackMed, 12.5);
    m_monitor.swPllStateChanged(ESwPllState_Holdover, 0);

    EXPECT_THAT(m_events, ElementsAre(SwPllStateMonitorCallbackParam(ESwPllState_TrackMed, 12.5),
                                      SwPllStateMonitorCallbackParam(ESwPllState_Holdover, 0)));
}

TEST_F(SimulatedSwPllMonitorTest, CalibrationIsToldWhenItHasChanged)
{
    m_monitor.setClockCalibrationStatusNotStarted();
    EXPECT_THAT(m_events, IsEmpty());
    m_monitor.setClockCalibrationStatusOngoing();
    m_monitor.setClockCalibrationStatusOngoing();
    m_monitor.setClockCalibrationStatusFinished();
    m_monitor.setClockCalibrationStatusNotStarted();

    ASSERT_THAT(m_events, SizeIs(3));
    EXPECT_EQ(m_events[0].getChangedParam(), EChangedParam_ClockCalibrationStatus);
    EXPECT_EQ(m_events[0].getClockCalibrationStatus(), EClockCalibrationStatus_Ongoing);
    EXPECT_EQ(m_events[1].getClockCalibrationStatus(), EClockCalibrationStatus_Finished);
    EXPECT_EQ(m_events[2].getClockCalibrationStatus(), EClockCalibrationStatus_NotStarted);
}

TEST_F(SimulatedSwPllMonitorTest, PermissionIsToldWhenItHasChanged)
{
    m_monitor.setHpfUpdateAllowed(ETunerHpfUpdateAllowed_False);
    EXPECT_THAT(m_events, IsEmpty());
    m_monitor.setHpfUpdateAllowed(ETunerHpfUpdateAllowed_True);
    m_monitor.setHpfUpdateAllowed(ETunerHpfUpdateAllowed_True);

    ASSERT_THAT(m_events, SizeIs(1));
    EXPECT_EQ(m_events[0].getChangedParam(), EChangedParam_HpfUpdateAllowed);
    EXPECT_EQ(m_events[0].getHpfUpdateAllowed(), ETunerHpfUpdateAllowed_True);
}

TEST_F(SimulatedSwPllMonitorTest, PllIsSuspendedAndResumed)
{
    EXPECT_FALSE(m_monitor.isSwPllSuspended());
    m_monitor.suspendSwPll();
    EXPECT_TRUE(m_monitor.isSwPllSuspended());
    m_monitor.resumeSwPll();
    EXPECT_FALSE(m_monitor.isSwPllSuspended());
}

class SimulatedSystemTimerTest : public ::testing::Test {
protected:
    using Callback = CallbackTo<AbstractSystemTimerBif::AbstractTimerSyncCallback, TimerSyncCallbackParam>;

    SimulatedSystemTimerTest()
    {
        m_clock.setBack(m_clock.timeError());
        m_timer.setSystemTimerSynchronizationCallback(&m_callback);
        m_timer.setSystemTimerSourceToRp1();
    }
    void bringUp()
    {
        m_timer.synchronizeSystemTimerAgainstSource();
        m_timer.step(3);
        ASSERT_EQ(m_timer.getSystemTimerSynchronizationState(), ETimerSyncState_InSync);
        m_states.clear();
    }

    std::vector<ETimerSyncState> m_states;
    Callback m_callback{
        [this](const TimerSyncCallbackParam& event) { m_states.push_back(event.getSynchronizationState()); }};
    Worker m_worker;
    BoardClock m_clock;
    SimulatedSystemTimer m_timer{m_clock, m_worker};
};

TEST_F(SimulatedSystemTimerTest, TimerIsInSyncAfterThreeSecondsOfBursts)
{
    EXPECT_THAT(m_states, IsEmpty());
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(1);
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(1);
    EXPECT_EQ(m_timer.getSystemTimerSynchronizationState(), ETimerSyncState_Synchronizing);
    m_timer.step(1);
    m_timer.step(1);
    m_timer.synchronizeSystemTimerAgainstSource();

    EXPECT_THAT(m_states, ElementsAre(ETimerSyncState_Synchronizing, ETimerSyncState_InSync));
}

TEST_F(SimulatedSystemTimerTest, TimerThatRunsFreelyIsOutOfSync)
{
    bringUp();

    m_timer.setSystemTimerSourceToFreeRunning();
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(5);

    EXPECT_THAT(m_states, ElementsAre(ETimerSyncState_OutOfSync));
}

TEST_F(SimulatedSystemTimerTest, TimerStaysInSyncWithoutReferenceUntilTheTimeIsFarOff)
{
    bringUp();
    m_clock.setReference(false);
    m_clock.setBack(1500);
    m_timer.step(1);
    EXPECT_THAT(m_states, IsEmpty());

    m_clock.setBack(0.5);
    m_timer.step(1);

    EXPECT_THAT(m_states, ElementsAre(ETimerSyncState_OutOfSync));
}

TEST_F(SimulatedSystemTimerTest, SynchronisationNeedsBurstsAndATimeThatIsNotFarOff)
{
    m_clock.setReference(false);
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(1);
    m_clock.setReference(true);
    m_clock.setBack(-1501);
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(1);

    EXPECT_THAT(m_states, ElementsAre(ETimerSyncState_Synchronizing, ETimerSyncState_OutOfSync,
                                      ETimerSyncState_Synchronizing, ETimerSyncState_OutOfSync));
}

TEST_F(SimulatedSystemTimerTest, SecondsAreCountedAnewForEachSynchronisation)
{
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(2);
    m_timer.setSystemTimerSourceToRp1();
    m_timer.synchronizeSystemTimerAgainstSource();
    m_timer.step(2);

    EXPECT_EQ(m_timer.getSystemTimerSynchronizationState(), ETimerSyncState_Synchronizing);
}

TEST(FieldCalibrationTest, ControlValuesAreAveragedOnceThePllHasSettled)
{
    FieldCalibration calibration;
    for (int step = 0; step < 11; ++step) { // 110 seconds
        calibration.step(ESwPllState_TrackMax, 99999, 10);
        EXPECT_EQ(calibration.status(), EClockCalibrationStatus_NotStarted);
    }
    for (int step = 0; step < 11; ++step) {
        calibration.step(ESwPllState_TrackMax, step % 2 == 0 ? 1000 : 1012, 10);
        EXPECT_EQ(calibration.status(), EClockCalibrationStatus_Ongoing) << step;
    }
    calibration.step(ESwPllState_TrackMax, 1012, 10);

    EXPECT_EQ(calibration.status(), EClockCalibrationStatus_Finished);
    EXPECT_EQ(calibration.controlValue(), 1006);
}

TEST(FieldCalibrationTest, AnythingElseBeginsAnew)
{
    FieldCalibration calibration;
    calibration.step(ESwPllState_TrackMax, 5000, 200);
    ASSERT_EQ(calibration.status(), EClockCalibrationStatus_Finished) << "one long step is as good as many";

    calibration = {};
    calibration.step(ESwPllState_TrackMax, 5000, 110);
    calibration.step(ESwPllState_TrackMax, 5000, 10);
    ASSERT_EQ(calibration.status(), EClockCalibrationStatus_Ongoing);
    calibration.step(ESwPllState_TrackMed, 5000, 1);
    EXPECT_EQ(calibration.status(), EClockCalibrationStatus_NotStarted);
    calibration.step(ESwPllState_TrackMax, 6000, 110);
    EXPECT_EQ(calibration.status(), EClockCalibrationStatus_NotStarted);
    calibration.step(ESwPllState_TrackMax, 6000, 120);

    EXPECT_EQ(calibration.status(), EClockCalibrationStatus_Finished);
    EXPECT_EQ(calibration.controlValue(), 6000);
}

TEST(FieldCalibrationTest, FinishedCalibrationStays)
{
    FieldCalibration calibration;
    calibration.step(ESwPllState_TrackMax, 7000, 300);

    calibration.step(ESwPllState_Holdover, 1, 10);
    calibration.step(ESwPllState_TrackMax, 1, 10);

    EXPECT_EQ(calibration.status(), EClockCalibrationStatus_Finished);
    EXPECT_EQ(calibration.controlValue(), 7000);
}

} // namespace
} // namespace dorn::examples
