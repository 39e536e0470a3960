// SPDX-License-Identifier: MIT
// The values of the enumerations, and their names.
#include "boundaryIf/baseband/BasebandNames.hpp"
#include "boundaryIf/baseband/cpri/CpriNames.hpp"
#include "boundaryIf/baseband/obsai/ObsaiNames.hpp"
#include "boundaryIf/baseband/router/RouterNames.hpp"
#include "boundaryIf/ocxo/OcxoNames.hpp"
#include "boundaryIf/phaselockstatusmonitor/PhaseLockNames.hpp"
#include "boundaryIf/swpllstatemonitor/SwPllNames.hpp"
#include "boundaryIf/systemtimer/SystemTimerNames.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace vel::hwapi::common::bif;
using namespace vel::hwapi::common::bif::baseband;
using namespace vel::hwapi::common::bif::systemtimer;
using namespace vel::hwapi::common::bif::swpllstatemonitor;
using namespace vel::hwapi::common::bif::phaselockstatusmonitor;
using namespace vel::hwapi::clocks::bif::ocxo;
namespace routerEnums = vel::hwapi::basebands::bif::baseband::router;

/// Expects the names to be these, with these values, and every other value to have none.
template <class Enum>
void expectValues(const std::vector<std::pair<unsigned, std::string_view>>& expected)
{
    static_assert(sizeof(Enum) == 4);
    std::vector<std::pair<unsigned, std::string_view>> found;
    for (const auto& [value, name] : namesOf(Enum{})) {
        found.emplace_back(value, name);
        EXPECT_EQ(nameOf(value), name);
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(nameOf(static_cast<Enum>(4711)), "unknown");
}

TEST(EnumsTest, EnumeratorsOfLinksHaveTheirValuesAndNames)
{
    expectValues<EBasebandLinkType>({{0, "Undefined"}, {1, "Obsai"}, {2, "Cpri"}});
}

TEST(EnumsTest, EnumeratorsOfObsaiHaveTheirValuesAndNames)
{
    using namespace obsai;
    expectValues<EObsaiLinkRate>({{0, "unknown"}, {1, "1x"}, {2, "2x"}, {3, "4x"}, {4, "8x"}});
    expectValues<EObsaiLinkType>({{0, "Unknown"}, {1, "Rp3"}, {2, "Rp301"}});
    expectValues<ERxLinkState>(
        {{0, "Unsync"}, {1, "WaitForSeed"}, {2, "WaitForAck"}, {3, "WaitForIdle"}, {4, "WaitForFrame"}, {5, "Frame"}});
    expectValues<ETxLinkState>({{0, "Off"}, {1, "IdleReq"}, {2, "IdleAck"}, {3, "Idle"}, {4, "Frame"}});
    expectValues<ELinkAutoSynchronizationMode>({{0, "Disabled"}, {1, "Master"}, {2, "Slave"}});
}

TEST(EnumsTest, EnumeratorsOfCpriHaveTheirValuesAndNames)
{
    using namespace cpri;
    expectValues<ECpriLinkRate>({{0, "unknown"}, {1, "1x"}, {2, "2x"}, {3, "4x"}, {4, "8x"}, {5, "10x"}});
    expectValues<ECpriProtocolVersion>({{0, "Unknown"}, {1, "1"}, {2, "2"}});
    expectValues<ERxLinkState>({{0, "XACQ1"}, {1, "XACQ2"}, {2, "XSYNC1"}, {3, "XSYNC2"}, {4, "HFNSYNC"}});
}

TEST(EnumsTest, EnumeratorsOfTheRouterHaveTheirValuesAndNames)
{
    using namespace routerEnums;
    expectValues<EMessageSlot>({{0, "Data"}, {1, "Control"}});
    expectValues<ERouteMode>({{1, "Fifo"}, {2, "TimestampSumming"}, {3, "Timestamp"}});
    EXPECT_EQ(nameOf(ERouteMode{}), "unknown"); // there is no 0
    expectValues<EMessageType>({{0, "Control"},
                                {1, "Measurement"},
                                {2, "WcdmaFdd"},
                                {3, "WcdmaTdd"},
                                {4, "GsmEdge"},
                                {5, "Tetra"},
                                {6, "Cdma2000"},
                                {7, "Wlan"},
                                {8, "Loopback"},
                                {9, "FrameClockBurst"},
                                {10, "Ethernet"},
                                {11, "RttMessage"},
                                {12, "802_16"},
                                {13, "VirtualHwreset"},
                                {14, "Lte"},
                                {15, "GenericPacket"}});
    expectValues<EAirStandard>(
        {{0, "Wcdma"}, {1, "LTE1_4"}, {2, "LTE3"}, {3, "LTE5"}, {4, "LTE10"}, {5, "LTE15"}, {6, "LTE20"}});
    expectValues<EIqSampleFormat>({{0, "4x7_1"}, {1, "2x15_1"}, {2, "4x8"}, {3, "2x16"}});
}

TEST(EnumsTest, RouterEnumerationsAreAlsoNamedWhereTheRouterIs)
{
    static_assert(std::is_same_v<baseband::router::EMessageType, routerEnums::EMessageType>);
    static_assert(baseband::router::EMessageType_802_16 == routerEnums::EMessageType_802_16);
    static_assert(baseband::router::ERouteMode_Fifo == 1U);
    static_assert(baseband::router::EMessageSlot_Control == 1U);
    static_assert(baseband::router::EAirStandard_LTE20 == 6U);
    static_assert(baseband::router::EIqSampleFormat_2x16 == 3U);
    SUCCEED();
}

TEST(EnumsTest, EnumeratorsOfClocksHaveTheirValuesAndNames)
{
    expectValues<ETimerSyncState>({{0, "OutOfSync"}, {1, "Synchronizing"}, {2, "InSync"}});
    expectValues<ESwPllState>({{0, "Undefined"},
                               {1, "Acquire0"},
                               {2, "Acquire1"},
                               {3, "Acquire2"},
                               {4, "Acquire3"},
                               {5, "TrackMed"},
                               {6, "TrackMax"},
                               {7, "Holdover"}});
    EXPECT_EQ(ESwPllState_Last, 8U);
    expectValues<EChangedParam>(
        {{0, "NotSet"}, {1, "ClockCalibrationStatus"}, {2, "SwPllState"}, {3, "HpfUpdateAllowed"}});
    expectValues<EClockCalibrationStatus>({{0, "NotStarted"}, {1, "Ongoing"}, {2, "Finished"}});
    expectValues<ETunerHpfUpdateAllowed>({{0, "False"}, {1, "True"}});
    expectValues<EPhaseLockStatus>({{0, "Ok"}, {1, "Exceed"}, {255, "Undefined"}});
}

TEST(EnumsTest, EnumeratorsOfTheOcxoHaveTheirValuesAndNames)
{
    expectValues<EClkOcxoStatusSensorState>({{0, "Ok"}, {1, "Fail"}, {2, "NotFound"}});
    expectValues<ESensorType>({{0, "all"}, {1, "oven_current"}, {2, "oven_temp_ocxo"}, {3, "oven_temp_outer_oven"}});
    expectValues<ECalibrationValueSource>({{0, "Field"}, {1, "Factory"}, {2, "Device"}, {3, "Undefined"}});
}

} // namespace
