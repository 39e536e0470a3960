// SPDX-License-Identifier: MIT
#include "board/EventText.hpp"

#include <csignal>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;

TEST(EventTextTest, LineHasTimeServiceAndText)
{
    EXPECT_EQ(eventLine({1'735'689'600s, "LedS", "runs", News::Good}), "2025-01-01T00:00:00.000000Z LedS: runs");
    EXPECT_EQ(eventLine({1'735'689'600s, "", "reset", News::Bad}), "2025-01-01T00:00:00.000000Z board: reset");
}

TEST(EventTextTest, LineSaysNothingToTheTerminal)
{
    EXPECT_EQ(eventLine({1'735'689'600s, "A", "says: \033[2J", News::Plain}),
              "2025-01-01T00:00:00.000000Z A: says: \\x1b[2J");
    EXPECT_EQ(sentence({1'735'689'600s, "A\033[2J", "runs", News::Plain}), "A\\x1b[2J: runs");
}

TEST(EventTextTest, EndIsAStatusOrASignal)
{
    EXPECT_EQ(endText(0), "ended with status 0");
    EXPECT_EQ(endText(1), "ended with status 1");
    EXPECT_EQ(endText(-SIGTERM), "killed by signal 15 (Terminated)");
}

TEST(EventTextTest, DelayIsAsShortAsItCanBe)
{
    EXPECT_EQ(delayText(0s), "0 ms");
    EXPECT_EQ(delayText(200ms), "200 ms");
    EXPECT_EQ(delayText(1s), "1 s");
    EXPECT_EQ(delayText(1500ms), "1.5 s");
    EXPECT_EQ(delayText(60s), "60 s");
}

TEST(EventTextTest, AgeHasTheGreatestUnitThatFits)
{
    EXPECT_EQ(ageText(-1s), "0s");
    EXPECT_EQ(ageText(59s), "59s");
    EXPECT_EQ(ageText(60s), "1m");
    EXPECT_EQ(ageText(3599s), "59m");
    EXPECT_EQ(ageText(3600s), "1h");
    EXPECT_EQ(ageText(86399s), "23h");
    EXPECT_EQ(ageText(86400s * 400), "400d");
}

} // namespace
} // namespace dorn::tool
