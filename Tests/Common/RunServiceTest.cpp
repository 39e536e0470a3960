// SPDX-License-Identifier: MIT
#include "RecordingPlatform.hpp"
#include "ScriptedService.hpp"

#include <gmock/gmock.h>

namespace vel::hwapi::common {
namespace {

using dorn::test::RecordingPlatform;
using dorn::test::ScriptedService;

class RunServiceTest : public testing::Test {
protected:
    /// RunService() with one more word on the command line.
    int runWith(std::string word)
    {
        std::string program = "bin/DornPingExe";
        char* argv[] = {program.data(), word.data(), nullptr};
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = RunService(m_service, 2, argv);
        testing::internal::GetCapturedStdout();
        m_standardError = testing::internal::GetCapturedStderr();
        return result;
    }

    RecordingPlatform m_platform;
    ScriptedService m_service;
    std::string m_standardError;
};

TEST_F(RunServiceTest, NormalEndIsOne)
{
    m_service.GetArgumentParser().SetArgumentInfo("-v Verbose\n");
    m_service.run = [] { return 0U; };

    EXPECT_EQ(runWith("-v"), 1);
    EXPECT_EQ(m_standardError, "");
}

TEST_F(RunServiceTest, FailureOfStartupIsZero)
{
    EXPECT_EQ(runWith("-x"), 0);
    EXPECT_EQ(m_standardError, "Invalid arguments:  -x\nTry DornPingExe with '-h' or '--help' agruments for usage "
                               "information\n");
}

TEST_F(RunServiceTest, PlatformThatDoesNotStartIsToldAndZero)
{
    m_service.GetArgumentParser().SetArgumentInfo("-v Verbose\n");
    m_platform.setResult("AaStartupEeStartup", 5);

    EXPECT_EQ(runWith("-v"), 0);
    EXPECT_EQ(m_standardError, "DornPingExe: Initialization failed: Failed to set initialize executable\n");
}

TEST_F(RunServiceTest, ExceptionOutOfPreStartupIsToldAndZero)
{
    m_service.GetArgumentParser().SetArgumentInfo("-v Verbose\n");
    m_service.preStartup = []() -> unsigned int { throw Service::RuntimeException("no sensor", "Sensor.cpp", 77); };

    EXPECT_EQ(runWith("-v"), 0);
    EXPECT_EQ(m_standardError, "DornPingExe: Runtime error: no sensor\n");
}

} // namespace
} // namespace vel::hwapi::common
