// SPDX-License-Identifier: MIT
#include "init/ApiStartup.h"
#include "RecordingPlatform.hpp"

#include <gmock/gmock.h>

#include <cstdio>
#include <stdio_ext.h>

extern "C" TBoolean initialiseInC(char** argv);
extern "C" void declareParametersInC();

namespace {

using dorn::test::RecordingPlatform;
using testing::ElementsAre;
using testing::IsEmpty;

class ApiStartupTest : public testing::Test {
protected:
    /// ApiStartupInitializeExecutable() as the program bin/DornPingExe, with what it prints kept.
    TBoolean initialise()
    {
        std::string program = "bin/DornPingExe";
        std::string option = "-v";
        char* argv[] = {program.data(), option.data(), nullptr};
        testing::internal::CaptureStdout();
        const TBoolean result = ApiStartupInitializeExecutable(2, argv, "Ping", 0xFEDC);
        m_printed = testing::internal::GetCapturedStdout();
        return result;
    }

    std::vector<std::string> calls() const { return m_platform.callsWithoutParameters(); }

    RecordingPlatform m_platform;
    std::string m_printed;
};

TEST_F(ApiStartupTest, ExecutableStartsStepByStep)
{
    EXPECT_EQ(initialise(), 1U);

    EXPECT_EQ(m_printed, "bin/DornPingExe: EE Start...\n");
    EXPECT_THAT(calls(),
                ElementsAre("AaConfigEarlyStartup()", "AaConfigTagSetString(\"tessel.service.aapro.eename\", \"Ping\")",
                            "AaConfigTagSetU16(\"tessel.service.aatbts.cpid\", 0xFEDC)", "AaStartupEeStartup()",
                            "AaConfigTagReadFile(\"/opt/dorn/dorn.xml\")",
                            "Info 0x0 Dorn, Tessel EE initialization done", "AaConfigRadRegisterDomain(2, \"HWA\")",
                            "AaConfigRadRegisterDomain(34, \"HWAState\")"));
    EXPECT_EQ(m_platform.calls("AaConfigRadSetDefault(0x2").size(), 205U + 36U);
    EXPECT_EQ(m_platform.calls("AaConfigRadSetDefault(0x22").size(), 36U);
    EXPECT_THAT(m_platform.calls("AaConfigRadSetMaxTagCount"),
                ElementsAre("AaConfigRadSetMaxTagCount(2, 0x200CD)", "AaConfigRadSetMaxTagCount(34, 0x220032)"));
}

TEST_F(ApiStartupTest, StandardOutputIsLineBuffered)
{
    std::setvbuf(stdout, nullptr, _IOFBF, 0);
    ASSERT_EQ(__flbf(stdout), 0);

    initialise();

    EXPECT_NE(__flbf(stdout), 0);
}

TEST_F(ApiStartupTest, EarlyStartThatFailsIsToldWithTheNumberZero)
{
    m_platform.setResult("AaConfigEarlyStartup", 7);

    EXPECT_EQ(initialise(), 0U);

    EXPECT_EQ(m_printed, "bin/DornPingExe: EE Start...\nbin/DornPingExe: AaConfigEarlyStartup() failed 0\n");
    EXPECT_THAT(m_platform.calls(), ElementsAre("AaConfigEarlyStartup()"));
}

TEST_F(ApiStartupTest, EeStartThatFailsIsToldWithItsCode)
{
    m_platform.setResult("AaStartupEeStartup", -9);

    EXPECT_EQ(initialise(), 0U);

    EXPECT_EQ(m_printed, "bin/DornPingExe: EE Start...\nbin/DornPingExe: AaStartupEeStartup() failed -9\n");
    EXPECT_EQ(m_platform.calls().back(), "AaStartupEeStartup()");
}

TEST_F(ApiStartupTest, MissingConfigurationFileIsNoFailure)
{
    m_platform.setResult("AaConfigTagReadFile", 1);

    EXPECT_EQ(initialise(), 1U);

    const auto made = calls();
    ASSERT_GE(made.size(), 4U);
    EXPECT_THAT(std::vector(made.end() - 4, made.end()),
                ElementsAre("AaConfigTagReadFile(\"/opt/dorn/dorn.xml\")",
                            "Info 0x0 Dorn, Tessel EE initialization done", "AaConfigRadRegisterDomain(2, \"HWA\")",
                            "AaConfigRadRegisterDomain(34, \"HWAState\")"));
}

TEST_F(ApiStartupTest, TagsThatCannotBeSetAreNoFailure)
{
    m_platform.setResult("AaConfigTagSetString", 4);
    m_platform.setResult("AaConfigTagSetU16", 4);

    EXPECT_EQ(initialise(), 1U);
}

TEST_F(ApiStartupTest, FirstDomainThatFailsIsLoggedAndTheSecondIsNotTried)
{
    m_platform.setResult("AaConfigRadRegisterDomain", 3);

    EXPECT_EQ(initialise(), 0U);

    EXPECT_THAT(m_platform.calls("AaConfigRadRegisterDomain"), ElementsAre("AaConfigRadRegisterDomain(2, \"HWA\")"));
    EXPECT_EQ(m_platform.calls().back(), "Warning 0x0 Dorn, R&D domain register failed 3");
}

TEST_F(ApiStartupTest, SecondDomainThatFailsIsLogged)
{
    m_platform.onCall = [this](const std::string& call) {
        if (call == "AaConfigRadRegisterDomain(34, \"HWAState\")") {
            m_platform.setResult("AaConfigRadRegisterDomain", 2);
        }
    };

    EXPECT_EQ(initialise(), 0U);

    EXPECT_EQ(m_platform.calls().back(), "Warning 0x0 HWAState, R&D domain register failed 2");
}

TEST_F(ApiStartupTest, FunctionsAreCalledFromC)
{
    std::string program = "bin/DornPingExe";
    char* argv[] = {program.data(), nullptr};
    testing::internal::CaptureStdout();
    EXPECT_EQ(initialiseInC(argv), 1U);
    testing::internal::GetCapturedStdout();
    EXPECT_THAT(m_platform.calls("AaConfigTagSet"),
                ElementsAre("AaConfigTagSetString(\"tessel.service.aapro.eename\", \"Ping\")",
                            "AaConfigTagSetU16(\"tessel.service.aatbts.cpid\", 0xFEDC)"));
    m_platform.clearCalls();

    declareParametersInC();

    EXPECT_EQ(m_platform.calls("AaConfigRadSetDefault(").size(), 205U + 36U);
}

TEST_F(ApiStartupTest, ProgramWithoutNameIsStartedAllTheSame)
{
    char* argv[] = {nullptr};
    testing::internal::CaptureStdout();
    EXPECT_EQ(ApiStartupInitializeExecutable(0, argv, "Ping", 1), 1U);
    EXPECT_EQ(ApiStartupInitializeExecutable(1, argv, "Ping", 1), 1U);
    EXPECT_EQ(ApiStartupInitializeExecutable(1, nullptr, "Ping", 1), 1U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), ": EE Start...\n: EE Start...\n: EE Start...\n");
}

} // namespace
