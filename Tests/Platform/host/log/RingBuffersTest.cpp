// SPDX-License-Identifier: MIT
#include "log/RingBuffers.hpp"

#include "AaSysLog.h"
#include "FailingFilePort.hpp"
#include "LogCapture.hpp"
#include "LogFixture.hpp"
#include "ManualClock.hpp"
#include "Sanitizers.hpp"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <thread>

namespace dorn::host {
namespace {

LineRing ringOf(std::size_t size)
{
    return {std::make_unique<char[]>(size), size};
}

TEST(LineRingTest, LinesAreKeptInOrder)
{
    LineRing ring = ringOf(100);
    EXPECT_EQ(ring.content(), "");
    EXPECT_TRUE(ring.append("one\n"));
    EXPECT_TRUE(ring.append("two\n"));
    EXPECT_EQ(ring.content(), "one\ntwo\n");
}

TEST(LineRingTest, OldestLinesMakeRoom)
{
    LineRing ring = ringOf(10);
    for (const char* const line : {"one\n", "two\n", "3\n", "four\n"}) {
        EXPECT_TRUE(ring.append(line));
    }
    EXPECT_EQ(ring.content(), "3\nfour\n");
}

TEST(LineRingTest, LinesWrapRoundTheEnd)
{
    LineRing ring = ringOf(11);
    std::string expected;
    for (int number = 10; number < 99; ++number) {
        const std::string line = std::to_string(number) + "\n";
        EXPECT_TRUE(ring.append(line));
        expected += line;
        expected = expected.substr(expected.size() > 9 ? expected.size() - 9 : 0);
        EXPECT_EQ(ring.content(), expected);
    }
}

TEST(LineRingTest, LineAsLongAsTheRingFits)
{
    LineRing ring = ringOf(4);
    EXPECT_TRUE(ring.append("\n"));
    EXPECT_TRUE(ring.append("abc\n"));
    EXPECT_EQ(ring.content(), "abc\n");
    EXPECT_FALSE(ring.append("abcd\n"));
    EXPECT_EQ(ring.content(), "abc\n");
}

std::atomic<int> tooLongLines{0};

int countTooLong()
{
    return ++tooLongLines;
}

int printWhenTooLong()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "a line that is too long as well");
    return countTooLong();
}

/// The seam's ring buffers; the clock stands at 2025-01-01T00:00:00Z.
class RingBufferTest : public LogTest {
protected:
    RingBufferTest()
    {
        registerFeatures();
        tooLongLines = 0;
    }

    static int addRing(EAaSysLogSeverityLevel severity, std::uint32_t size = 10'000)
    {
        return AaSysLogRegisterRingBuffer(clocks, size, severity, countTooLong);
    }

    std::string dump() const
    {
        EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 0);
        return m_node.readBoardFile("/ring.txt");
    }

    static std::string line(const std::string& severity, const std::string& text)
    {
        return "2025-01-01T00:00:00.000000Z " + severity + " " + process() + " - CLKS " + text + "\n";
    }

    testkit::ManualClock m_clock;
};

TEST_F(RingBufferTest, LinesThatAreNotPrintedAreKept)
{
    const testkit::LogCapture log;
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "one %d", 1);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, clocks, "two");
    EXPECT_EQ(dump(), line("debug", "one 1") + line("info", "two"));
    EXPECT_TRUE(log.texts().empty());
}

TEST_F(RingBufferTest, LinesThatArePrintedAreKeptToo)
{
    const testkit::LogCapture log;
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, clocks, "one");
    EXPECT_EQ(dump(), line("error", "one"));
    EXPECT_EQ(log.texts(), std::vector<std::string>{"Error 0x20013 one"});
}

TEST_F(RingBufferTest, LinesBelowItsSeverityAreNotKept)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Info), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "below");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, clocks, "at");
    EXPECT_EQ(dump(), line("info", "at"));
}

TEST_F(RingBufferTest, LevelNotValidKeepsAllButNoPrints)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_NotValid), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_NotValid, clocks, "not valid");
    AaSysLogPrintE(EAaSysLogSeverityLevel_NoPrints, clocks, "no prints");
    EXPECT_EQ(dump(), line("notvalid", "not valid"));
}

TEST_F(RingBufferTest, LevelNoPrintsKeepsNothing)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_NoPrints), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Vip, clocks, "text");
    EXPECT_EQ(dump(), "");
}

TEST_F(RingBufferTest, LevelNoneDoesNotTouchRingBuffers)
{
    useLog("none", "none");
    registerFeatures();
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "text");
    EXPECT_EQ(dump(), line("debug", "text"));
}

TEST_F(RingBufferTest, LinesOfOtherFeaturesAreNeitherKeptNorPrinted)
{
    const testkit::LogCapture log;
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, twin, "other");
    AaSysLogPrint(EAaSysLogSeverityLevel_Debug, "none");
    EXPECT_EQ(dump(), "");
    EXPECT_TRUE(log.texts().empty());
}

TEST_F(RingBufferTest, EachFeatureHasItsOwn)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Info), 0);
    ASSERT_EQ(AaSysLogRegisterRingBuffer(twin, 1'000, EAaSysLogSeverityLevel_Debug, nullptr), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, twin, "twin");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, clocks, "clocks");
    EXPECT_EQ(dump(), line("info", "clocks"));
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(twin, "/twin.txt"), 0);
    EXPECT_EQ(m_node.readBoardFile("/twin.txt"), "2025-01-01T00:00:00.000000Z debug " + process() + " - EAC twin\n");
}

TEST_F(RingBufferTest, SecondForAFeatureIsRefused)
{
    EXPECT_EQ(addRing(EAaSysLogSeverityLevel_Error), 0);
    EXPECT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 1);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "below");
    EXPECT_EQ(dump(), "");
}

TEST_F(RingBufferTest, SizeZeroIsRefused)
{
    EXPECT_EQ(addRing(EAaSysLogSeverityLevel_Debug, 0), 2);
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 1);
}

TEST_F(RingBufferTest, NoMemoryIsTold)
{
    if (dorn::test::hasAddressSanitizer || dorn::test::hasThreadSanitizer) {
        GTEST_SKIP() << "a sanitizer needs the address space that this test takes away";
    }
    const auto add = [] {
        const rlimit limit{1U << 30U, 1U << 30U};
        setrlimit(RLIMIT_AS, &limit);
        std::exit(addRing(EAaSysLogSeverityLevel_Debug, 0xFFFFFFFFU) == 2 ? 0 : 1);
    };
    EXPECT_EXIT(add(), testing::ExitedWithCode(0), "");
}

TEST_F(RingBufferTest, OwnerIsToldOfALineThatIsTooLong)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug, static_cast<std::uint32_t>(line("debug", "1234").size())), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "1234");
    EXPECT_EQ(tooLongLines, 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "12345");
    EXPECT_EQ(tooLongLines, 1);
    EXPECT_EQ(dump(), line("debug", "1234"));
}

TEST_F(RingBufferTest, OwnerMayPrintWhenToldAndBeNull)
{
    ASSERT_EQ(AaSysLogRegisterRingBuffer(clocks, 4, EAaSysLogSeverityLevel_Debug, printWhenTooLong), 0);
    ASSERT_EQ(AaSysLogRegisterRingBuffer(twin, 4, EAaSysLogSeverityLevel_Debug, nullptr), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "too long");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, twin, "too long");
    EXPECT_EQ(tooLongLines, 1);
}

TEST_F(RingBufferTest, DumpKeepsTheLinesAndReplacesTheFile)
{
    m_node.writeBoardFile("/ring.txt", std::string(5'000, 'x'));
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "text");
    EXPECT_EQ(dump(), line("debug", "text"));
    EXPECT_EQ(dump(), line("debug", "text"));
}

TEST_F(RingBufferTest, DumpWithoutRingBufferFails)
{
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 1);
    EXPECT_FALSE(std::filesystem::exists(m_node.boardRoot() + "/ring.txt"));
}

TEST_F(RingBufferTest, DumpToWhatCannotBeWrittenFails)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/missing/ring.txt"), 2);
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "ring.txt"), 2);
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, nullptr), 2);
}

TEST_F(RingBufferTest, DumpDoesNotFollowALinkOutOfTheBoardRoot)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    const std::string outside = m_node.runDirectory() + "/outside";
    std::ofstream(outside) << "untouched";
    std::filesystem::create_symlink(outside, m_node.boardRoot() + "/ring.txt");

    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 2);
    std::string left;
    std::ifstream(outside) >> left;
    EXPECT_EQ(left, "untouched");

    std::filesystem::remove(m_node.boardRoot() + "/ring.txt");
    std::filesystem::create_symlink("/other.txt", m_node.boardRoot() + "/ring.txt");
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 0);
    EXPECT_TRUE(std::filesystem::exists(m_node.boardRoot() + "/other.txt"));
}

TEST_F(RingBufferTest, DumpToAFullDiskFails)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "text");
    const testkit::FullDisk disk(10);
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 2);
}

TEST_F(RingBufferTest, NextNodeHasNone)
{
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug), 0);
    closeNode();
    EXPECT_EQ(AaSysLogDumpRingBufferToFile(clocks, "/ring.txt"), 1);
}

TEST_F(RingBufferTest, ThreadsShareARingBuffer)
{
    constexpr int linesOfEach = 1'000;
    ASSERT_EQ(addRing(EAaSysLogSeverityLevel_Debug, 5'000), 0);
    const auto print = [] {
        for (int number = 0; number < linesOfEach; ++number) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "number %d", number);
        }
    };

    std::thread other(print);
    print();
    other.join();

    std::istringstream lines(dump());
    int count = 0;
    for (std::string text; std::getline(lines, text); ++count) {
        EXPECT_TRUE(parseLogLine(text)) << text;
    }
    EXPECT_GT(count, 50);
}

} // namespace
} // namespace dorn::host
