// SPDX-License-Identifier: MIT
#include "log/LogLine.hpp"

#include <gtest/gtest.h>

namespace dorn::host {
namespace {

const LogLine warning{std::chrono::seconds(1'763'716'681) + std::chrono::microseconds(123'456),
                      EAaSysLogSeverityLevel_Warning,
                      "Clock",
                      4711,
                      "ClockMain",
                      0,
                      "CLKS",
                      "PLL 2 lost its reference"};

TEST(LogLineTest, LineHasAllFieldsInOrder)
{
    EXPECT_EQ(formatLogLine(warning),
              "2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain CLKS PLL 2 lost its reference");
}

TEST(LogLineTest, MissingFieldsAreDashes)
{
    LogLine line = warning;
    line.eeName = line.euName = line.featureName = line.text = "";
    EXPECT_EQ(formatLogLine(line), "2025-11-21T09:18:01.123456Z warning -[4711] - - ");
}

TEST(LogLineTest, FormattedLineReadsBack)
{
    EXPECT_EQ(parseLogLine(formatLogLine(warning)), warning);
    EXPECT_EQ(parseLogLine(formatLogLine(warning) + "\n"), warning);
    LogLine line = warning;
    line.eeName = "Two Words";
    line.euName = "[1] x";
    line.featureName = line.text = "";
    EXPECT_EQ(parseLogLine(formatLogLine(line)), line);
}

TEST(LogLineTest, IdOfAFeatureWithoutNameReadsBack)
{
    LogLine line = warning;
    line.featureId = 0x20066;
    line.featureName = "0x20066";
    EXPECT_EQ(parseLogLine(formatLogLine(line)), line);
}

TEST(LogLineTest, FeatureNameThatOnlyBeginsLikeAnIdIsAName)
{
    const auto line = parseLogLine("2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain 0xAXIS text");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->featureId, 0U);
    EXPECT_EQ(line->featureName, "0xAXIS");
}

TEST(LogLineTest, BlanksInTheTextAreKept)
{
    LogLine line = warning;
    line.text = "  two  blanks ";
    EXPECT_EQ(parseLogLine(formatLogLine(line))->text, "  two  blanks ");
}

TEST(LogLineTest, LineFeedInTheTextForgesNoLine)
{
    LogLine line = warning;
    line.text = "a\n2025-11-21T09:18:01.123456Z error Other[1] - - forged";
    EXPECT_EQ(formatLogLine(line), "2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain CLKS "
                                   "a\\n2025-11-21T09:18:01.123456Z error Other[1] - - forged");
}

TEST(LogLineTest, WhatIsNoLineIsRefused)
{
    for (const char* const text : {"", "\n", "2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain CLKS",
                                   "yesterday warning Clock[4711] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z loud Clock[4711] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z none Clock[4711] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning [4711] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[4711x] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[-1] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[4711  ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[99999999999] ClockMain CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[4711]  CLKS text",
                                   "2025-11-21T09:18:01.123456Z warning Clock[4711] ClockMain CLKS two\nlines"}) {
        EXPECT_FALSE(parseLogLine(text)) << text;
    }
}

TEST(SeverityWordTest, EverySeverityHasAWord)
{
    constexpr const char* words[] = {"notvalid", "debug", "info", "warning", "error", "vip", "none"};
    for (int severity = 0; severity <= EAaSysLogSeverityLevel_NoPrints; ++severity) {
        const auto level = static_cast<EAaSysLogSeverityLevel>(severity);
        EXPECT_EQ(severityWord(level), words[severity]);
        EXPECT_EQ(severityOf(words[severity]), level);
    }
}

TEST(SeverityWordTest, OtherWordsAreNoSeverity)
{
    EXPECT_FALSE(severityOf("Warning"));
    EXPECT_FALSE(severityOf(""));
}

TEST(SeverityWordTest, NumberThatIsNoSeverityIsNotValid)
{
    EXPECT_EQ(severityWord(static_cast<EAaSysLogSeverityLevel>(7)), "notvalid");
}

} // namespace
} // namespace dorn::host
