// SPDX-License-Identifier: MIT
#include "DornCommand.hpp"

#include "AaSysLog.h"
#include "ManualClock.hpp"
#include "TestNode.hpp"
#include "log/LogName.hpp"

#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

/// A node on which this process, named ClimateS, writes its log.
class DornLogTest : public ::testing::Test {
protected:
    DornLogTest() { host::nameLog("ClimateS"); }

    /// A command's answer with this process's id and its EU replaced.
    static std::string shown(const std::string& answer)
    {
        return replaced(answer, "[" + std::to_string(getpid()) + "]", "[PID]");
    }
    static std::string shown(const std::vector<std::string>& arguments)
    {
        const CommandResult result = dorn(arguments);
        EXPECT_EQ(result.status, 0) << result.remarks;
        EXPECT_EQ(result.remarks, "");
        return shown(result.answer);
    }

    void write(EAaSysLogSeverityLevel severity, const char* text)
    {
        m_clock.advance(std::chrono::seconds(1));
        AaSysLogPrint(severity, "%s", text);
    }
    void writeThree()
    {
        write(EAaSysLogSeverityLevel_Warning, "one");
        write(EAaSysLogSeverityLevel_Error, "two");
        write(EAaSysLogSeverityLevel_Warning, "three");
    }

    const testkit::TestNode m_node{{.nodeId = std::nullopt, .log = "file", .logLevel = std::nullopt}};
    testkit::ManualClock m_clock;
};

TEST_F(DornLogTest, LatestLinesAreShown)
{
    writeThree();

    EXPECT_EQ(shown({"log", "-n", "2"}), "2025-01-01T00:00:02.000000Z error ClimateS[PID] - - two\n"
                                         "2025-01-01T00:00:03.000000Z warning ClimateS[PID] - - three\n");
}

TEST_F(DornLogTest, FilterComesBeforeTheCount)
{
    writeThree();

    EXPECT_EQ(shown({"log", "-n", "1", "--severity", "error"}),
              "2025-01-01T00:00:02.000000Z error ClimateS[PID] - - two\n");
}

TEST_F(DornLogTest, FeatureCanBeAskedForByNumber)
{
    writeThree();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, 0x20066U, "of a feature");

    EXPECT_EQ(shown({"log", "--feature", "0x20066"}),
              "2025-01-01T00:00:03.000000Z warning ClimateS[PID] - 0x20066 of a feature\n");
}

TEST_F(DornLogTest, NoLineOfThatKindIsANo)
{
    writeThree();

    EXPECT_EQ(dorn({"log", "--service", "LedS"}),
              (CommandResult{1, "", "dorn: no line of the log of node 0x0F01 is like that\n"}));
}

TEST_F(DornLogTest, JsonIsAnObjectALine)
{
    write(EAaSysLogSeverityLevel_Warning, "one");

    EXPECT_EQ(replaced(dorn({"log", "--json"}).answer, std::to_string(getpid()), "PID"),
              R"({"time":"2025-01-01T00:00:01.000000Z","severity":"warning","service":"ClimateS","pid":PID,)"
              R"("eu":"","feature":"","featureId":0,"text":"one"})"
              "\n");
}

TEST_F(DornLogTest, FollowGoesOnBehindTheLatestLines)
{
    writeThree();
    DornCommand follow({"log", "-f", "-n", "1", "--count", "2"});
    ASSERT_TRUE(follow.waitForOutput("three\n"));

    write(EAaSysLogSeverityLevel_Warning, "four");
    ASSERT_TRUE(follow.waitForOutput("four\n"));
    write(EAaSysLogSeverityLevel_Warning, "five");

    EXPECT_EQ(follow.waitForEnd(), 0);
    EXPECT_EQ(shown(follow.standardOutput()), "2025-01-01T00:00:03.000000Z warning ClimateS[PID] - - three\n"
                                              "2025-01-01T00:00:04.000000Z warning ClimateS[PID] - - four\n"
                                              "2025-01-01T00:00:05.000000Z warning ClimateS[PID] - - five\n");
}

TEST_F(DornLogTest, FollowShowsOnlyWhatIsAskedFor)
{
    writeThree();
    DornCommand follow({"log", "-f", "-n", "1", "--count", "1", "--severity", "error"});
    ASSERT_TRUE(follow.waitForOutput("two\n"));

    write(EAaSysLogSeverityLevel_Warning, "four");
    write(EAaSysLogSeverityLevel_Error, "five");

    EXPECT_EQ(follow.waitForEnd(), 0);
    EXPECT_EQ(shown(follow.standardOutput()), "2025-01-01T00:00:02.000000Z error ClimateS[PID] - - two\n"
                                              "2025-01-01T00:00:05.000000Z error ClimateS[PID] - - five\n");
}

class DornLogEndTest : public DornLogTest, public ::testing::WithParamInterface<int> {};

TEST_P(DornLogEndTest, FollowEndsWell)
{
    writeThree();
    DornCommand follow({"log", "-f"});
    ASSERT_TRUE(follow.waitForOutput("three\n"));
    // It is known to have come to the lines to come.
    ASSERT_TRUE(follow.waitForOutputOf([this] { write(EAaSysLogSeverityLevel_Warning, "four"); }, "four\n"));

    follow.signal(GetParam());

    EXPECT_EQ(follow.waitForEnd(), 0);
    EXPECT_EQ(follow.standardError(), "");
}

INSTANTIATE_TEST_SUITE_P(Signals, DornLogEndTest, ::testing::Values(SIGINT, SIGTERM));

} // namespace
} // namespace dorn::tool
