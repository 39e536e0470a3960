// SPDX-License-Identifier: MIT
#include "LogCapture.hpp"

#include "AaSysLog.h"
#include "NodeTest.hpp"

#include <gmock/gmock.h>
#include <thread>
#include <unistd.h>

namespace dorn::testkit {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t feature = 0x20066;

class LogCaptureTest : public NodeTest {};

TEST_F(LogCaptureTest, LineIsSeverityFeatureAndText)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, feature, "link %d is down", 3);

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x20066 link 3 is down"));
}

TEST_F(LogCaptureTest, LineWithoutFeatureHasFeatureZero)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Vip, "reset");

    EXPECT_THAT(m_log.texts(), ElementsAre("Vip 0x0 reset"));
}

TEST_F(LogCaptureTest, EverySeverityHasItsName)
{
    host::LogLine line;
    line.text = "text";
    std::vector<std::string> texts;
    for (int severity = 0; severity <= EAaSysLogSeverityLevel_NoPrints; ++severity) {
        line.severity = static_cast<EAaSysLogSeverityLevel>(severity);
        texts.push_back(textOf(line));
    }

    EXPECT_THAT(texts, ElementsAre("NotValid 0x0 text", "Debug 0x0 text", "Info 0x0 text", "Warning 0x0 text",
                                   "Error 0x0 text", "Vip 0x0 text", "NoPrints 0x0 text"));
}

TEST_F(LogCaptureTest, LineThatIsNotKeptIsNotSeen)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, feature, "too detailed");

    EXPECT_THAT(m_log.texts(), IsEmpty());
}

TEST(LogCaptureLevelTest, NodeMayAskForLinesBelowWarning)
{
    const TestNode node({.logLevel = "debug"});
    const LogCapture log;

    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, feature, "every detail");

    EXPECT_THAT(log.texts(), ElementsAre("Debug 0x20066 every detail"));
}

TEST_F(LogCaptureTest, LinesTellWhereTheyComeFrom)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "slow");

    const std::vector<host::LogLine> lines = m_log.lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].pid, getpid());
    EXPECT_EQ(lines[0].featureId, feature);
    EXPECT_EQ(lines[0].severity, EAaSysLogSeverityLevel_Warning);
}

TEST_F(LogCaptureTest, CountsEqualLines)
{
    for (int line = 0; line < 2; ++line) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "again");
    }
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "again and again");

    EXPECT_EQ(m_log.count("Error 0x0 again"), 2U);
    EXPECT_EQ(m_log.count("Error 0x0 aga"), 0U);
}

TEST_F(LogCaptureTest, WaitsForTheLineOfAnotherThread)
{
    const std::jthread thread([] { AaSysLogPrint(EAaSysLogSeverityLevel_Error, "from afar"); });

    EXPECT_TRUE(m_log.waitFor("Error 0x0 from afar"));
}

TEST_F(LogCaptureTest, WaitForALineThatDoesNotComeIsBounded)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "another");

    EXPECT_FALSE(m_log.waitFor("Error 0x0 this one", std::chrono::milliseconds(1)));
}

TEST_F(LogCaptureTest, ClearForgets)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "before");
    m_log.clear();
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "after");

    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x0 after"));
}

TEST_F(LogCaptureTest, SeesOnlyLinesOfItsLife)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "before");
    const LogCapture later;
    AaSysLogPrint(EAaSysLogSeverityLevel_Error, "after");

    EXPECT_THAT(later.texts(), ElementsAre("Error 0x0 after"));
    EXPECT_THAT(m_log.texts(), ElementsAre("Error 0x0 before", "Error 0x0 after"));
}

} // namespace
} // namespace dorn::testkit
