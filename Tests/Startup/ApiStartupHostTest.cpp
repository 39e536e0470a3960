// SPDX-License-Identifier: MIT
// Start-up of an executable on the host's platform.
#include "RadRows.hpp"
#include "init/ApiStartup.h"

#include "AaConfigRad.h"
#include "AaConfigTag.h"
#include "AaSysCom.h"
#include "FailNth.hpp"
#include "NodeTest.hpp"
#include "OutputCapture.hpp"

#include <gmock/gmock.h>

namespace {

using dorn::test::RadRow;
using dorn::testkit::FailNth;
using testing::Contains;

class ApiStartupHostTest : public dorn::testkit::NodeTest {
protected:
    TBoolean initialise()
    {
        std::string program = "bin/DornPingExe";
        char* argv[] = {program.data(), nullptr};
        return ApiStartupInitializeExecutable(1, argv, "Ping", 0x456);
    }

    dorn::testkit::OutputCapture m_output;
};

TEST_F(ApiStartupHostTest, EveryParameterReadsAsItsDefault)
{
    ASSERT_EQ(initialise(), 1U);

    for (const RadRow& row : dorn::test::hwaRows) {
        EXPECT_EQ(AaConfigRadGetValue(row.identifier), row.defaultValue) << row.name;
    }
    for (const RadRow& row : dorn::test::hwaStateRows) {
        EXPECT_EQ(AaConfigRadGetValue(row.identifier), row.defaultValue) << row.index;
    }
    EXPECT_EQ(m_output.standardOutput(), "bin/DornPingExe: EE Start...\n");
}

TEST_F(ApiStartupHostTest, ParametersOfOneNameAreToldApartByTheirIdentifiers)
{
    ASSERT_EQ(initialise(), 1U);

    AaConfigRadSetValue(ERadHwapi_SecureResetTimerTmo, 5);

    EXPECT_EQ(AaConfigRadGetValue(ERadHwapi_SecureResetTimerTmo), 5U);
    EXPECT_EQ(AaConfigRadGetValue(ERadHwapi_PrintEacService), 0U);
}

TEST_F(ApiStartupHostTest, LastIdentifierIsOutsideItsDomain)
{
    ASSERT_EQ(initialise(), 1U);

    EXPECT_EQ(AaConfigRadSetValue(ERadHwapi_SelfDiagnosticModeDisableRP441, 7), 0);
    EXPECT_NE(AaConfigRadSetValue(ERadHwapi_Last, 7), 0);
    EXPECT_EQ(AaConfigRadSetValue(ERadHwapiState_BlackboxState, 7), 0);
    EXPECT_NE(AaConfigRadSetValue(ERadHwapiState_Last, 7), 0);
}

TEST_F(ApiStartupHostTest, ConfigurationFileIsRead)
{
    m_node.writeBoardFile("/opt/dorn/dorn.xml", "<dorn><tag name=\"sys.unit.ownboard\" type=\"u32\">17</tag></dorn>");

    ASSERT_EQ(initialise(), 1U);

    std::uint32_t value = 0;
    EXPECT_EQ(AaConfigTagGetU32("sys.unit.ownboard", &value), EAaConfigTagStatus_Ok);
    EXPECT_EQ(value, 17U);
}

TEST_F(ApiStartupHostTest, MessagesCanBeReceivedAlthoughADomainFailed)
{
    const FailNth<AaConfigRadRegisterDomain> noDomain(2, 2);

    EXPECT_EQ(initialise(), 0U);

    EXPECT_THAT(m_log.texts(), Contains("Warning 0x0 HWAState, R&D domain register failed 2"));
    ASSERT_EQ(AaSysComUserRegister(0x456, AaProEuCurrent()), 0x456);
    void* message = AaSysComMsgCreate(0x1234, 0, AaSysComSicadGet(0x456, AaSysComGetOwnNid()));
    ASSERT_EQ(AaSysComMsgSend(&message), EAaSysComStatus_Ok);
    message = AaSysComMsgReceive(AA_WAIT_FOREVER);
    EXPECT_EQ(AaSysComMsgGetId(message), 0x1234U);
    AaSysComMsgDestroy(&message);
    AaSysComUserDeregister(0x456);
}

TEST_F(ApiStartupHostTest, EarlyStartThatFailsIsToldWithTheNumberZero)
{
    const FailNth<AaConfigEarlyStartup> noTags(1, 7);

    EXPECT_EQ(initialise(), 0U);

    EXPECT_EQ(m_output.standardOutput(),
              "bin/DornPingExe: EE Start...\nbin/DornPingExe: AaConfigEarlyStartup() failed 0\n");
}

} // namespace
