// SPDX-License-Identifier: MIT
// `dorn redundancy` with the redundancy manager and the climate service as processes of their own.
#include "DornCommand.hpp"

#include "NodeTest.hpp"
#include "Peer.hpp"
#include "RadWait.hpp"
#include "RedundancyMessages.hpp"
#include "Service.hpp"
#include "rad/ERadHwapiState.h"

#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace dorn::tool {
namespace {

using namespace examples;
using namespace vel::hwapi::common;

class DornRedundancyTest : public testkit::NodeTest {
protected:
    DornRedundancyTest()
    {
        if (!testkit::waitForRad(ERadHwapiState_HwCtrlSState, 2)) {
            throw std::runtime_error("the redundancy manager does not start: " + m_manager.standardError());
        }
    }
    void startClimate()
    {
        m_climate = std::make_unique<testkit::Process>(DORN_CLIMATE_SERVICE, std::vector<std::string>{"--redundancy"});
        ASSERT_TRUE(testkit::waitForRad(ERadHwapiState_ClimateState, 2)) << m_climate->standardError();
    }

    testkit::Process m_manager{DORN_REDUNDANCY_MANAGER};
    std::unique_ptr<testkit::Process> m_climate;
};

TEST_F(DornRedundancyTest, ServicesAreShown)
{
    EXPECT_EQ(dorn({"redundancy", "show"}), (CommandResult{0, "unit: standby\n", ""}));
    startClimate();

    EXPECT_EQ(dorn({"redundancy", "show"}), (CommandResult{0,
                                                           "unit: standby\n"
                                                           "SERVICE          MODE  STATE         AFTER\n"
                                                           "ClimateS 0x0211  all   self-standby  card-state\n",
                                                           ""}));
}

TEST_F(DornRedundancyTest, UnitIsSwitchedToAndFro)
{
    startClimate();

    EXPECT_EQ(dorn({"redundancy", "switch", "active"}), (CommandResult{0, "", ""}));
    EXPECT_NE(dorn({"redundancy", "show", "--json"}).answer.find("\"state\": \"self-active\""), std::string::npos);
    EXPECT_EQ(dorn({"redundancy", "switch", "standby"}), (CommandResult{0, "", ""}));
    EXPECT_TRUE(dorn({"redundancy", "show"}).answer.starts_with("unit: standby\n"));
}

TEST_F(DornRedundancyTest, ServiceThatHangsStopsTheSwitchInTime)
{
    startClimate();
    m_climate->signal(SIGSTOP);

    EXPECT_EQ(dorn({"redundancy", "switch", "active"}),
              (CommandResult{1, "",
                             "dorn: the unit has not become active and is now 'between'; ClimateS 0x0211 after "
                             "prepare-active: timeout\n"}));

    m_climate->signal(SIGCONT);
    EXPECT_EQ(dorn({"redundancy", "switch", "active"}), (CommandResult{0, "", ""}));
}

TEST_F(DornRedundancyTest, ServiceThatWasKilledIsForgotten)
{
    startClimate();
    m_climate->signal(SIGKILL);
    m_climate->waitForEnd();

    EXPECT_EQ(dorn({"redundancy", "show"}), (CommandResult{0, "unit: standby\n", ""}));
}

TEST_F(DornRedundancyTest, ManagerThatComesBackKnowsItsServices)
{
    startClimate();
    m_manager.signal(SIGKILL);
    m_manager.waitForEnd();
    EXPECT_EQ(dorn({"redundancy", "show"}),
              (CommandResult{1, "",
                             "dorn: the redundancy manager does not run on node 0x0F01; start "
                             "DornRedundancyManagerExe\n"}));
    testkit::Process again(DORN_REDUNDANCY_MANAGER);

    DornCommand show({"redundancy", "show"});
    CommandResult result = show.result();
    const auto end = std::chrono::steady_clock::now() + testkit::generousBound;
    while (result.status != 0 && std::chrono::steady_clock::now() < end) { // until it has its cpid
        result = dorn({"redundancy", "show"});
    }

    EXPECT_NE(result.answer.find("ClimateS 0x0211  all   self-standby  card-state\n"), std::string::npos)
        << result.answer << result.remarks;
}

TEST_F(DornRedundancyTest, RoleThatIsNoneIsWrongUse)
{
    EXPECT_EQ(dorn({"redundancy", "switch", "idle"}),
              (CommandResult{2, "",
                             "dorn: 'idle' is no role: give 'active' or 'standby'\n"
                             "Try 'dorn redundancy switch --help'\n"}));
    EXPECT_EQ(dorn({"redundancy", "switch"}).status, 2);
}

TEST_F(DornRedundancyTest, BusyManagerIsSaidToBeSo)
{
    testkit::Peer service(0x0301);
    service.send<Service::HwapiRedundancyRegisterReqMsg>(redundancyManagerCpid, {0, ERedundancyMode_All, 0});
    service.expect<Service::HwapiRedundancyRegisterRespMsg>();
    service.send<RedundancySwitchReqMsg>(redundancyManagerCpid, {1, EUnitRole_Active});
    service.expect<Service::HwapiRedundancyStateReqMsg>(); // and does not answer

    EXPECT_EQ(
        dorn({"redundancy", "switch", "standby"}),
        (CommandResult{1, "", "dorn: the redundancy manager is busy with another question or switch; try again\n"}));
}

} // namespace
} // namespace dorn::tool
