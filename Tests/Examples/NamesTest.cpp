// SPDX-License-Identifier: MIT
#include "FaultNames.hpp"
#include "RedundancyNames.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace dorn::examples {
namespace {

/// Whether every name from the second on is there, and no two are the same.
template <std::size_t count>
void expectNames(const std::array<const char*, count>& names)
{
    std::set<std::string> seen;
    EXPECT_STREQ(names[0], "");
    for (std::size_t index = 1; index < count; ++index) {
        ASSERT_NE(names[index], nullptr) << index;
        EXPECT_STRNE(names[index], "") << index;
        EXPECT_TRUE(seen.insert(names[index]).second) << names[index];
    }
}

TEST(NamesTest, EveryNumberHasItsOwnName)
{
    expectNames(faultNames);
    expectNames(alarmStateNames);
    expectNames(alarmEventNames);
    expectNames(redundancyModeNames);
    expectNames(redundancyCommandNames);
    expectNames(redundancyStateNames);
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
