// SPDX-License-Identifier: MIT
#include "ClockNames.hpp"
#include "FaultNames.hpp"
#include "LinkNames.hpp"
#include "RedundancyNames.hpp"
#include "SfpNames.hpp"
#include "boundaryIf/baseband/BasebandTypes.hpp"
#include "boundaryIf/baseband/cpri/CpriNames.hpp"
#include "boundaryIf/baseband/obsai/ObsaiTypes.hpp"
#include "boundaryIf/phaselockstatusmonitor/PhaseLockTypes.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllTypes.hpp"
#include "boundaryIf/systemtimer/SystemTimerTypes.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace dorn::examples {
namespace {

/// Whether every name from @p first on is there, and no two are the same.
template <std::size_t count>
void expectNamesFrom(std::size_t first, const std::array<const char*, count>& names)
{
    std::set<std::string> seen;
    for (std::size_t index = first; index < count; ++index) {
        ASSERT_NE(names[index], nullptr) << index;
        EXPECT_STRNE(names[index], "") << index;
        EXPECT_TRUE(seen.insert(names[index]).second) << names[index];
    }
}

/// Same, where 0 stands for nothing and has no name.
template <std::size_t count>
void expectNames(const std::array<const char*, count>& names)
{
    EXPECT_STREQ(names[0], "");
    expectNamesFrom(1, names);
}

TEST(NamesTest, EveryNumberHasItsOwnName)
{
    expectNames(faultNames);
    expectNames(alarmStateNames);
    expectNames(alarmEventNames);
    expectNames(redundancyModeNames);
    expectNames(redundancyCommandNames);
    expectNames(redundancyStateNames);
    expectNames(linkStandardNames);
    expectNamesFrom(0, sfpModuleNames);
    expectNamesFrom(0, cpriRxStateNames);
    expectNamesFrom(0, obsaiRxStateNames);
    expectNamesFrom(0, obsaiTxStateNames);
    expectNamesFrom(0, linkConditionNames);
    expectNamesFrom(0, linkPartNames);
    expectNamesFrom(0, swPllStateNames);
    expectNamesFrom(0, timerSyncStateNames);
    expectNamesFrom(0, calibrationStatusNames);
    expectNamesFrom(0, dacStatusNames);
}

TEST(NamesTest, HardwareIsCalledWhatItsInterfacesMean)
{
    using namespace vel::hwapi::common::bif;
    EXPECT_STREQ(sfpModuleNames[ESfpModule_Starting], "starting");
    EXPECT_STREQ(linkStandardNames[baseband::EBasebandLinkType_Cpri], "CPRI");
    for (const auto& [state, name] : namesOf(baseband::cpri::ERxLinkState{})) {
        EXPECT_EQ(linkRxStateName(ELinkStandard_Cpri, state), std::string(name));
    }
    EXPECT_STREQ(linkRxStateName(ELinkStandard_Obsai, baseband::obsai::ERxLinkState_WaitForFrame), "WAIT_FOR_FRAME");
    EXPECT_STREQ(linkRxStateName(ELinkStandard_Obsai, baseband::obsai::ERxLinkState_Frame), "FRAME");
    EXPECT_STREQ(linkRxStateName(ELinkStandard_Cpri, 5), "");
    EXPECT_STREQ(nameIn(obsaiTxStateNames, baseband::obsai::ETxLinkState_IdleAck), "IDLE_ACK");
    EXPECT_STREQ(nameIn(obsaiTxStateNames, baseband::obsai::ETxLinkState_Frame), "FRAME");
    EXPECT_STREQ(nameIn(swPllStateNames, swpllstatemonitor::ESwPllState_Acquire3), "acquire3");
    EXPECT_STREQ(nameIn(swPllStateNames, swpllstatemonitor::ESwPllState_Holdover), "holdover");
    EXPECT_STREQ(nameIn(swPllStateNames, swpllstatemonitor::ESwPllState_Last), "");
    EXPECT_STREQ(nameIn(timerSyncStateNames, systemtimer::ETimerSyncState_InSync), "in-sync");
    EXPECT_STREQ(nameIn(calibrationStatusNames, swpllstatemonitor::EClockCalibrationStatus_Finished), "finished");
    EXPECT_STREQ(phaseLockStatusName(phaselockstatusmonitor::EPhaseLockStatus_Ok), "ok");
    EXPECT_STREQ(phaseLockStatusName(phaselockstatusmonitor::EPhaseLockStatus_Exceed), "exceed");
    EXPECT_STREQ(phaseLockStatusName(phaselockstatusmonitor::EPhaseLockStatus_Undefined), "undefined");
    EXPECT_STREQ(phaseLockStatusName(7), "");
}

TEST(NamesTest, NamesStandAtTheirNumbers)
{
    using namespace vel::hwapi::common;
    EXPECT_STREQ(nameIn(faultNames, EFaultId_BoardOverheated), "board-overheated");
    EXPECT_STREQ(nameIn(faultNames, EFaultId_RedundancyLost), "redundancy-lost");
    EXPECT_STREQ(nameIn(alarmStateNames, EAlarmState_Displaced), "displaced");
    EXPECT_STREQ(nameIn(alarmEventNames, EAlarmEvent_Ended), "ended");
    EXPECT_STREQ(nameIn(redundancyModeNames, ERedundancyMode_Switchover), "switchover");
    EXPECT_STREQ(nameIn(redundancyCommandNames, ERedundancyCommand_TakeHwLatch), "take-hw-latch");
    EXPECT_STREQ(redundancyStateName(ERedundancyState_MateStandby), "mate-standby");
    EXPECT_STREQ(redundancyStateName(ERedundancyState_Timeout), "timeout");
    EXPECT_STREQ(unitRoleNames[EUnitRole_Standby], "standby");
    EXPECT_STREQ(unitRoleNames[EUnitRole_Active], "active");
    EXPECT_STREQ(unitRoleNames[EUnitRole_Between], "between");
}

TEST(NamesTest, NumberBeyondTheTableHasNoName)
{
    EXPECT_STREQ(nameIn(faultNames, EFaultId_Last), "");
    EXPECT_STREQ(nameIn(faultNames, 0xFFFFFFFF), "");
    EXPECT_STREQ(redundancyStateName(254), "");
}

} // namespace
} // namespace dorn::examples
