// SPDX-License-Identifier: MIT
#include "log/LogSettings.hpp"

#include <gtest/gtest.h>

namespace dorn::host {
namespace {

class LogSettingsTest : public ::testing::Test {
protected:
    LogSettings parse(const char* sinks, const char* level) { return parseLogSettings(sinks, level, m_complaints); }

    EAaSysLogSeverityLevel leastSeverity(const char* level) { return parse(nullptr, level).leastSeverity; }

    LogComplaints m_complaints;
    const LogSettings m_defaults{true, true, false, {}, EAaSysLogSeverityLevel_Warning};
};

TEST_F(LogSettingsTest, NothingSetMeansStderrAndRunDirectoryFromWarningOn)
{
    EXPECT_EQ(parse(nullptr, nullptr), m_defaults);
    EXPECT_EQ(parse("", ""), m_defaults);
    EXPECT_EQ(m_complaints, LogComplaints{});
}

TEST_F(LogSettingsTest, SinksAreNamedInAList)
{
    EXPECT_EQ(parse("stderr", nullptr), (LogSettings{.toStderr = true}));
    EXPECT_EQ(parse("file", nullptr), (LogSettings{.toRunDirectory = true}));
    EXPECT_EQ(parse("syslog", nullptr), (LogSettings{.toSyslog = true}));
    EXPECT_EQ(parse("file:/var/log/a.log", nullptr), (LogSettings{.files = {"/var/log/a.log"}}));
    EXPECT_EQ(parse("syslog,file:b,stderr,file,file:a", nullptr), (LogSettings{true, true, true, {"b", "a"}}));
    EXPECT_EQ(m_complaints, LogComplaints{});
}

TEST_F(LogSettingsTest, NoneIsNoSink)
{
    EXPECT_EQ(parse("none", nullptr), LogSettings{});
    EXPECT_EQ(parse("none,file", nullptr), (LogSettings{.toRunDirectory = true}));
    EXPECT_EQ(m_complaints, LogComplaints{});
}

TEST_F(LogSettingsTest, FileNamedTwiceIsOpenedOnce)
{
    EXPECT_EQ(parse("file:a,file:a,stderr,stderr", nullptr), (LogSettings{.toStderr = true, .files = {"a"}}));
}

TEST_F(LogSettingsTest, UnknownSinkIsLeftOut)
{
    EXPECT_EQ(parse("file,paper", nullptr), (LogSettings{.toRunDirectory = true}));
    EXPECT_EQ(m_complaints,
              LogComplaints{"DORN_LOG: 'paper' is no sink (stderr, file, file:PATH, syslog, none); it is left out"});
}

TEST_F(LogSettingsTest, FileWithoutPathIsLeftOut)
{
    EXPECT_EQ(parse("stderr,file:,", nullptr), (LogSettings{.toStderr = true}));
    EXPECT_EQ(m_complaints,
              LogComplaints{"DORN_LOG: 'file:' is no sink (stderr, file, file:PATH, syslog, none); it is left out"});
}

TEST_F(LogSettingsTest, NothingButUnknownSinksMeansTheUsualOnes)
{
    EXPECT_EQ(parse("Stderr", nullptr), m_defaults);
    EXPECT_EQ(m_complaints,
              LogComplaints{"DORN_LOG: 'Stderr' is no sink (stderr, file, file:PATH, syslog, none); it is left out"});
}

TEST_F(LogSettingsTest, LevelLowersTheLimit)
{
    EXPECT_EQ(leastSeverity("debug"), EAaSysLogSeverityLevel_Debug);
    EXPECT_EQ(leastSeverity("1"), EAaSysLogSeverityLevel_Debug);
    EXPECT_EQ(leastSeverity("info"), EAaSysLogSeverityLevel_Info);
    EXPECT_EQ(leastSeverity("2"), EAaSysLogSeverityLevel_Info);
}

TEST_F(LogSettingsTest, WarningAndAboveStayWhateverTheLevelButNone)
{
    for (const char* const level : {"warning", "3", "error", "4", "vip", "5"}) {
        EXPECT_EQ(leastSeverity(level), EAaSysLogSeverityLevel_Warning) << level;
    }
    EXPECT_EQ(leastSeverity("none"), EAaSysLogSeverityLevel_NoPrints);
    EXPECT_EQ(leastSeverity("6"), EAaSysLogSeverityLevel_NoPrints);
    EXPECT_EQ(m_complaints, LogComplaints{});
}

TEST_F(LogSettingsTest, WrongLevelIsReportedAndPassedOver)
{
    EXPECT_EQ(leastSeverity("loud"), EAaSysLogSeverityLevel_Warning);
    EXPECT_EQ(m_complaints, LogComplaints{"DORN_LOG_LEVEL: 'loud' is no level (debug, info, warning, error, vip, none, "
                                          "or 1 to 6); warning is used"});
}

TEST_F(LogSettingsTest, OtherWrongLevelsAreReportedAsWell)
{
    for (const char* const level : {"0", "7", "11", "-1", "Debug", "notvalid", " 1"}) {
        m_complaints.clear();
        EXPECT_EQ(leastSeverity(level), EAaSysLogSeverityLevel_Warning) << level;
        EXPECT_EQ(m_complaints.size(), 1U) << level;
    }
}

} // namespace
} // namespace dorn::host
