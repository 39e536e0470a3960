// SPDX-License-Identifier: MIT
#include "AaError.h"

#include "LogCapture.hpp"
#include "TestNode.hpp"
#include "log/LogObserver.hpp"

#include <cstdio>
#include <gtest/gtest.h>

namespace {

using namespace dorn;

/// Lines of the process that dies are shown on its standard error, where the death test looks.
class AaErrorDeathTest : public ::testing::Test {
protected:
    static void die()
    {
        host::addLogObserver(
            [](const host::LogLine& line) { std::fprintf(stderr, "<%s>\n", testkit::textOf(line).c_str()); });
        AaErrorAssertionFailed("pointer != NULL", "Common/src/dsp.cpp", 42);
    }

    testkit::TestNode m_node;
};

TEST_F(AaErrorDeathTest, BrokenAssertionIsLoggedAndEndsTheProcess)
{
    EXPECT_EXIT(die(), testing::KilledBySignal(SIGABRT),
                "<Error 0x0 Assertion failed: pointer != NULL \\(file: Common/src/dsp\\.cpp, line: 42\\)>");
}

TEST_F(AaErrorDeathTest, MacroTellsConditionFileAndLine)
{
    const auto fail = [] {
        host::addLogObserver([](const host::LogLine& line) { std::fprintf(stderr, "<%s>\n", line.text.c_str()); });
        AaErrorAssertion(1 + 1 == 3);
    };
    EXPECT_EXIT(fail(), testing::KilledBySignal(SIGABRT),
                "<Assertion failed: 1 \\+ 1 == 3 \\(file: .*AaErrorTest\\.cpp, line: [1-9][0-9]*\\)>");
}

TEST_F(AaErrorDeathTest, AssertionThatHoldsDoesNothing)
{
    const testkit::LogCapture log;
    AaErrorAssertion(1 + 1 == 2);
    EXPECT_TRUE(log.texts().empty());
}

} // namespace
