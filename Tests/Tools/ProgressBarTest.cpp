// SPDX-License-Identifier: MIT
#include "waiting/ProgressBar.hpp"

#include "ManualClock.hpp"
#include "TestConsole.hpp"

#include <chrono>
#include <gtest/gtest.h>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;

constexpr const char* gone = "\r\033[K";

class ProgressBarTest : public ::testing::Test {
protected:
    testkit::ManualClock m_clock;
    TestConsole m_console{false, true};
};

TEST_F(ProgressBarTest, ShortWorkNeedsNoBar)
{
    {
        ProgressBar bar(m_console, "reading");
        bar.show(0.5, 100);
        m_clock.advance(299ms);
        bar.show(0.9, 200);
    }
    EXPECT_EQ(m_console.remarks(), "");
}

TEST_F(ProgressBarTest, LongWorkShowsHowFarItHasComeAndClearsUp)
{
    {
        ProgressBar bar(m_console, "reading");
        m_clock.advance(300ms);
        bar.show(0.5, 1536);
    }
    EXPECT_EQ(m_console.remarks(), std::string(gone) + "reading  [" + std::string(15, '#') + std::string(15, '-') +
                                       "]  50 %  1.5 KiB" + gone);
    EXPECT_EQ(m_console.answer(), "");
}

TEST_F(ProgressBarTest, BarIsDrawnAnewNowAndThenOnly)
{
    ProgressBar bar(m_console, "reading");
    m_clock.advance(300ms);
    bar.show(-1, 1);
    bar.show(-1, 2);
    m_clock.advance(100ms);
    bar.show(-1, 3);
    EXPECT_EQ(m_console.remarks(), std::string(gone) + "reading  1 B" + gone + "reading  3 B");
}

TEST_F(ProgressBarTest, ThereIsNoBarWithoutATerminal)
{
    TestConsole console(false, false);
    {
        ProgressBar bar(console, "reading");
        m_clock.advance(1s);
        bar.show(0.5, 100);
    }
    EXPECT_EQ(console.remarks(), "");
}

TEST_F(ProgressBarTest, FractionBeyondItsRangeIsAFullBar)
{
    ProgressBar bar(m_console, "reading");
    m_clock.advance(1s);
    bar.show(7, 0);
    EXPECT_EQ(m_console.remarks(), std::string(gone) + "reading  [" + std::string(30, '#') + "] 100 %  0 B");
}

} // namespace
} // namespace dorn::tool
