// SPDX-License-Identifier: MIT
// The climate service raises an alarm and takes part in switch-overs.
#include "ClimateS.hpp"

#include "AaConfigTag.h"
#include "AaFault.h"
#include "AlarmMessages.hpp"
#include "BoardPlan.hpp"
#include "ClimatePlan.hpp"
#include "FailNth.hpp"
#include "ManualClock.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"
#include "Peer.hpp"
#include "PlanTexts.hpp"
#include "RedundancyMessages.hpp"
#include "ServiceUnderTest.hpp"

#include <gmock/gmock.h>

#include <chrono>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;
using testkit::Peer;
using testkit::ServiceUnderTest;

class ClimateSTest : public testkit::NodeTest {
protected:
    /// Lets so many measuring periods pass.
    void measure(ServiceUnderTest& running, int periods)
    {
        for (int period = 0; period < periods; ++period) {
            ASSERT_TRUE(m_clock.waitForSleepers());
            m_clock.advance(std::chrono::milliseconds(500));
            running.sync();
        }
    }

    testkit::OutputCapture m_output;
    testkit::ManualClock m_clock;
    ClimateS m_climate;
};

TEST_F(ClimateSTest, HotBoardIsReportedOnce)
{
    Peer manager(faultManagerCpid);
    Peer led(ledServiceCpid);
    ServiceUnderTest running(m_climate);
    ASSERT_TRUE(running.waitUntilReady());

    ASSERT_EQ(AaConfigTagSetU32(ambientTag, 75), EAaConfigTagStatus_Ok);
    measure(running, 20);

    const auto fault = manager.expect<FaultIndMsg>();
    EXPECT_EQ(fault->faultId, EFaultId_BoardOverheated);
    ASSERT_EQ(fault->detailSize, sizeof(std::int32_t));
    std::int32_t temperature = 0;
    std::memcpy(&temperature, &*fault + 1, sizeof temperature);
    EXPECT_GE(temperature, 75);
    EXPECT_LE(temperature, 100);
    manager.expectNothing();
}

TEST_F(ClimateSTest, BoardThatIsHotAgainIsReportedAgain)
{
    Peer manager(faultManagerCpid);
    Peer led(ledServiceCpid);
    ServiceUnderTest running(m_climate);
    ASSERT_TRUE(running.waitUntilReady());
    for (const std::uint32_t ambient : {75U, 25U, 75U}) {
        ASSERT_EQ(AaConfigTagSetU32(ambientTag, ambient), EAaConfigTagStatus_Ok);
        measure(running, 20);
    }

    manager.expect<FaultIndMsg>();
    manager.expect<FaultIndMsg>();
    manager.expectNothing();
}

TEST_F(ClimateSTest, ReportThatCannotBeMadeIsTriedAgain)
{
    Peer manager(faultManagerCpid);
    ServiceUnderTest running(m_climate);
    ASSERT_TRUE(running.waitUntilReady());
    ASSERT_EQ(AaConfigTagSetU32(ambientTag, 75), EAaConfigTagStatus_Ok);
    {
        const testkit::FailEvery<AaSysComMsgCreate> noMemory;
        measure(running, 20);
        manager.expectNothing();
    }
    measure(running, 1);

    EXPECT_EQ(manager.expect<FaultIndMsg>()->faultId, EFaultId_BoardOverheated);
    EXPECT_GE(m_log.count("Error 0x20047 Heat not reported: faile to allocate SICAP message"), 1U);
}

TEST_F(ClimateSTest, LimitsAreThePlans)
{
    m_node.writeBoardFile(boardPlanFile,
                          planFor(climatePlanObject, planned("warmLimit", "-5") + planned("hotLimit", "30")));
    Peer manager(faultManagerCpid);
    Peer led(ledServiceCpid);
    ServiceUnderTest running(m_climate);
    ASSERT_TRUE(running.waitUntilReady());
    measure(running, 2);

    EXPECT_EQ(manager.expect<FaultIndMsg>()->faultId, EFaultId_BoardOverheated);
}

TEST_F(ClimateSTest, LimitThatThePlanDoesNotHaveStaysAsItIs)
{
    EXPECT_EQ(plannedLimits({60, 75}), (ThermalLimits{60, 75}));
    m_node.writeBoardFile(boardPlanFile, planFor(climatePlanObject, planned("hotLimit", "80")));
    EXPECT_EQ(plannedLimits({60, 75}), (ThermalLimits{60, 80}));
}

TEST_F(ClimateSTest, LimitsThatMakeNoSenseAreNotApplied)
{
    const std::string begin = "Warning 0x20047 Plan /opt/dorn/plan.xml not applied to Board=1,Climate=1: ";
    for (const auto& [parameters, trouble] :
         {std::pair(planned("warmLimit", "75"), "it is hot before it is warm"),
          std::pair(planned("warmLimit", "-41"), "warmLimit is no number from -40 to 125"),
          std::pair(planned("hotLimit", "126"), "hotLimit is no number from -40 to 125")}) {
        m_log.clear();
        m_node.writeBoardFile(boardPlanFile, planFor(climatePlanObject, parameters));
        EXPECT_EQ(plannedLimits({60, 75}), (ThermalLimits{60, 75}));
        EXPECT_EQ(m_log.texts(), std::vector{begin + trouble});
    }
}

TEST_F(ClimateSTest, ServiceRegistersOnlyWhenItIsToldTo)
{
    Peer manager(redundancyManagerCpid);
    ServiceUnderTest running(m_climate);
    ASSERT_TRUE(running.waitUntilReady());

    manager.expectNothing();
}

TEST_F(ClimateSTest, ServiceTellsWhichUnitItIsOn)
{
    Peer manager(redundancyManagerCpid);
    ServiceUnderTest running(m_climate, {"--redundancy"});
    const auto request = manager.expect<Service::HwapiRedundancyRegisterReqMsg>();
    EXPECT_EQ(request->redundancyMode, ERedundancyMode_All);
    manager.send<Service::HwapiRedundancyRegisterRespMsg>(request.sender(), {0, ERedundancyMode_All, 0, 0});
    const auto stateAfter = [&](ERedundancyCommand command) {
        manager.send<Service::HwapiRedundancyStateReqMsg>(request.sender(), {1, command});
        return manager.expect<Service::ApiRedundancyIndMsg>()->state;
    };

    EXPECT_EQ(stateAfter(ERedundancyCommand_CardState), ERedundancyState_SelfStandby);
    ASSERT_EQ(AaConfigTagSetU32(activeUnitTag, 1), EAaConfigTagStatus_Ok);
    EXPECT_EQ(stateAfter(ERedundancyCommand_CardState), ERedundancyState_SelfActive);
    EXPECT_EQ(stateAfter(ERedundancyCommand_PrepareStandby), ERedundancyState_Ready);
}

} // namespace
} // namespace dorn::examples
