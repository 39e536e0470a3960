// SPDX-License-Identifier: MIT
#include "log/LogObserver.hpp"

#include "LogFixture.hpp"
#include "ManualClock.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace dorn::host {
namespace {

class LogObserverTest : public LogTest {
protected:
    ~LogObserverTest() override
    {
        for (const int number : m_numbers) {
            removeLogObserver(number);
        }
    }

    int add(const LogObserver& observer)
    {
        m_numbers.push_back(addLogObserver(observer));
        return m_numbers.back();
    }

    std::vector<int> m_numbers;
};

TEST_F(LogObserverTest, KeptLineIsSeenWithAllItsParts)
{
    const testkit::ManualClock clock;
    registerFeatures();
    std::vector<LogLine> seen;
    add([&seen](const LogLine& line) { seen.push_back(line); });
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, clocks, "PLL %d\n", 2);
    const LogLine expected{clock.wall(), EAaSysLogSeverityLevel_Error, "Clock", getpid(), "", clocks, "CLKS", "PLL 2"};
    EXPECT_EQ(seen, std::vector<LogLine>{expected});
}

TEST_F(LogObserverTest, LineThatIsNotKeptIsNotSeen)
{
    int seen = 0;
    add([&seen](const LogLine&) { ++seen; });
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "text");
    (AaSysLogPrint)(EAaSysLogSeverityLevel_Info, "text");
    EXPECT_EQ(seen, 0);
}

TEST_F(LogObserverTest, LineIsSeenBeforeThePrintReturns)
{
    std::thread::id thread;
    add([&thread](const LogLine&) { thread = std::this_thread::get_id(); });
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(LogObserverTest, AllObserversSeeALine)
{
    int first = 0;
    int second = 0;
    add([&first](const LogLine&) { ++first; });
    add([&second](const LogLine&) { ++second; });
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST_F(LogObserverTest, RemovedObserverSeesNothing)
{
    int removed = 0;
    int other = 0;
    const int number = add([&removed](const LogLine&) { ++removed; });
    add([&other](const LogLine&) { ++other; });
    removeLogObserver(number);
    removeLogObserver(number);
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(other, 1);
}

TEST_F(LogObserverTest, LinePrintedByAnObserverIsNotObserved)
{
    int seen = 0;
    add([&seen](const LogLine&) {
        ++seen;
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "seen");
    });
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(seen, 2);
}

TEST_F(LogObserverTest, NoCallIsUnderWayOnceRemoved)
{
    std::atomic<bool> stop{false};
    std::thread printer([&stop] {
        while (!stop) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
        }
    });

    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> isAlive{true};
        std::atomic<int> wrong{0};
        const int number = addLogObserver([&](const LogLine&) { wrong += isAlive ? 0 : 1; });
        removeLogObserver(number);
        isAlive = false;
        EXPECT_EQ(wrong, 0);
    }

    stop = true;
    printer.join();
}

} // namespace
} // namespace dorn::host
