// SPDX-License-Identifier: MIT
#include "log/LogReader.hpp"

#include "AaSysLog.h"
#include "LogFixture.hpp"
#include "ManualClock.hpp"
#include "log/SegmentWriter.hpp"
#include "node/RunDirectory.hpp"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace dorn::host {
namespace {

using Texts = std::vector<std::string>;
constexpr Deadline atOnce{0};

Texts textsOf(const std::vector<LogLine>& lines)
{
    Texts texts;
    for (const LogLine& line : lines) {
        texts.push_back(line.text);
    }
    return texts;
}

/// Another process of the node, whose lines and times a test chooses.
class WritingProcess {
public:
    WritingProcess(const RunDirectory& node, const std::string& eeName, std::int32_t pid,
                   std::size_t size = 8 * SegmentWriter::step)
        : m_control(node), m_segments(openLogDirectory(node), size), m_eeName(eeName), m_pid(pid)
    {
        EXPECT_EQ(m_segments.open({eeName, pid, pid, 0}), 0);
        m_control.noteFiles();
    }

    void print(int second, const std::string& text)
    {
        printRaw(formatLogLine(
                     {std::chrono::seconds(second), EAaSysLogSeverityLevel_Info, m_eeName, m_pid, "", 0, "", text}) +
                 "\n");
    }

    void printRaw(const std::string& text)
    {
        if (!m_segments.canHold(text.size())) {
            turn();
        }
        ASSERT_EQ(m_segments.reserve(text.size()), 0);
        m_segments.append(text);
        m_control.noteLine();
    }

    void turn()
    {
        ASSERT_EQ(m_segments.turn(), 0);
        m_control.noteFiles();
    }

    void rename(const std::string& eeName)
    {
        ASSERT_EQ(m_segments.rename(eeName), 0);
        m_control.noteFiles();
    }

    SegmentWriter& segments() { return m_segments; }

private:
    LogControl m_control;
    SegmentWriter m_segments;
    std::string m_eeName;
    std::int32_t m_pid;
};

class LogReaderTest : public LogTest {
protected:
    LogReaderTest() : m_run(m_node.runDirectory(), 0x0F01) {}

    std::string directory() const { return m_run.path() + "/log/"; }

    RunDirectory m_run;
};

TEST_F(LogReaderTest, EmptyNodeHasNoLines)
{
    LogReader reader;
    EXPECT_TRUE(reader.list().empty());
    EXPECT_TRUE(reader.last(10).empty());
    EXPECT_TRUE(reader.next(atOnce).empty());
}

TEST_F(LogReaderTest, LinesOfAllProcessesAreMergedByTime)
{
    WritingProcess clock(m_run, "Clock", 1);
    WritingProcess sfp(m_run, "Sfp", 2);
    clock.print(10, "a");
    sfp.print(11, "b");
    sfp.print(12, "c");
    clock.print(13, "d");
    EXPECT_EQ(textsOf(LogReader(m_run).last(10)), (Texts{"a", "b", "c", "d"}));
}

TEST_F(LogReaderTest, LastAreTheLatestOfAll)
{
    WritingProcess clock(m_run, "Clock", 1);
    WritingProcess sfp(m_run, "Sfp", 2);
    clock.print(10, "a");
    clock.print(20, "b");
    sfp.print(15, "c");
    sfp.print(25, "d");
    LogReader reader(m_run);
    EXPECT_EQ(textsOf(reader.last(0)), Texts{});
    EXPECT_EQ(textsOf(reader.last(2)), (Texts{"b", "d"}));
    EXPECT_EQ(textsOf(reader.last(3)), (Texts{"c", "b", "d"}));
    EXPECT_EQ(textsOf(reader.last(100)), (Texts{"a", "c", "b", "d"}));
}

TEST_F(LogReaderTest, LastReachesIntoTheOlderSegment)
{
    WritingProcess clock(m_run, "Clock", 1);
    clock.print(1, "a");
    clock.print(2, "b");
    clock.turn();
    clock.print(3, "c");
    LogReader reader(m_run);
    EXPECT_EQ(textsOf(reader.last(2)), (Texts{"b", "c"}));
    EXPECT_EQ(textsOf(reader.last(9)), (Texts{"a", "b", "c"}));
}

TEST_F(LogReaderTest, NextYieldsWhatCameSince)
{
    WritingProcess clock(m_run, "Clock", 1);
    clock.print(1, "before");
    LogReader reader(m_run);
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{});
    clock.print(2, "after");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"after"});
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{});
}

TEST_F(LogReaderTest, NextGoesOnBehindLast)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    clock.print(1, "a");
    EXPECT_EQ(textsOf(reader.last(10)), Texts{"a"});
    clock.print(2, "b");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"b"});
}

TEST_F(LogReaderTest, NextSeesProcessesThatStartLater)
{
    LogReader reader(m_run);
    WritingProcess clock(m_run, "Clock", 1);
    clock.print(1, "first");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"first"});
    WritingProcess sfp(m_run, "Sfp", 2);
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{});
    sfp.print(2, "second");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"second"});
}

TEST_F(LogReaderTest, NextFollowsFromSegmentToSegment)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    Texts expected;
    for (int turn = 0; turn < 5; ++turn) {
        clock.print(turn, "before");
        clock.turn();
        clock.print(turn, "after");
        EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"before", "after"})) << turn;
    }
    EXPECT_EQ(reader.gaps(), 0U);
}

TEST_F(LogReaderTest, LinesWrittenOverBeforeTheyWereReadAreAGap)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    clock.print(1, "read");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"read"});
    clock.print(2, "lost");
    clock.turn();
    clock.print(3, "b");
    clock.turn();
    clock.print(4, "c");
    EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"b", "c"}));
    EXPECT_EQ(reader.gaps(), 1U);
}

TEST_F(LogReaderTest, SegmentWrittenOverAfterItWasReadIsNoGap)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    clock.print(1, "a");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"a"});
    clock.turn();
    clock.print(2, "b");
    clock.turn();
    clock.print(3, "c");
    EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"b", "c"}));
    EXPECT_EQ(reader.gaps(), 0U);
}

TEST_F(LogReaderTest, SeveralSegmentsMissedAreAGap)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    for (int second = 1; second < 5; ++second) {
        clock.turn();
        clock.print(second, std::to_string(second));
    }
    EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"3", "4"}));
    EXPECT_EQ(reader.gaps(), 1U);
}

TEST_F(LogReaderTest, ProcessKeepsItsOrderWhenTheClockIsSetBack)
{
    WritingProcess clock(m_run, "Clock", 1);
    WritingProcess sfp(m_run, "Sfp", 2);
    clock.print(100, "a");
    clock.print(50, "b");
    sfp.print(60, "c");
    EXPECT_EQ(textsOf(LogReader(m_run).last(10)), (Texts{"c", "a", "b"}));
}

TEST_F(LogReaderTest, ProcessThatEndedIsStillRead)
{
    {
        WritingProcess clock(m_run, "Clock", 1);
        clock.print(1, "last words");
    }
    LogReader reader(m_run);
    EXPECT_EQ(textsOf(reader.last(10)), Texts{"last words"});
    ASSERT_EQ(reader.list().size(), 1U);
    EXPECT_FALSE(reader.list()[0].alive);
}

TEST_F(LogReaderTest, WhatIsOpenIsReadAlthoughTheFilesAreClearedAway)
{
    LogReader reader(m_run);
    auto clock = std::make_unique<WritingProcess>(m_run, "Clock", 1);
    EXPECT_TRUE(reader.next(atOnce).empty());
    clock->print(1, "last words");
    clock.reset();
    pruneLogs(openLogDirectory(m_run), {0, 0});
    LogControl(m_run).noteFiles();
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"last words"});
    EXPECT_TRUE(reader.next(atOnce).empty());
}

TEST_F(LogReaderTest, RenamedProcessIsFollowed)
{
    WritingProcess clock(m_run, "exe", 1);
    LogReader reader(m_run);
    clock.print(1, "before");
    clock.rename("Clock");
    clock.print(2, "after");
    EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"before", "after"}));
    EXPECT_EQ(reader.list().at(0).eeName, "Clock");
    clock.turn();
    clock.rename("Again");
    EXPECT_EQ(reader.list().at(0).eeName, "Again");
    EXPECT_EQ(reader.list().size(), 1U);
}

TEST_F(LogReaderTest, ListTellsOfEveryProcess)
{
    WritingProcess clock(m_run, "Clock", 1);
    WritingProcess sfp(m_run, "Sfp", 2);
    clock.printRaw("0123456789\n");
    clock.turn();
    clock.printRaw("0123\n");
    clock.segments().noteDropped(7);

    const std::vector<ProcessLogInfo> infos = LogReader(m_run).list();

    ASSERT_EQ(infos.size(), 2U);
    EXPECT_EQ(infos[0].eeName, "Clock");
    EXPECT_EQ(infos[0].pid, 1);
    EXPECT_EQ(infos[0].since, Nanoseconds(1));
    EXPECT_TRUE(infos[0].alive);
    EXPECT_EQ(infos[0].dropped, 7U);
    EXPECT_EQ(infos[0].bytes, 16U);
    EXPECT_EQ(infos[1].eeName, "Sfp");
    EXPECT_TRUE(infos[1].alive);
    EXPECT_EQ(infos[1].bytes, 0U);
}

TEST_F(LogReaderTest, GarbageInTheDirectoryIsPassedOver)
{
    WritingProcess clock(m_run, "Clock", 1);
    clock.print(1, "line");
    std::ofstream(directory() + "notes.txt") << "notes";
    std::ofstream(directory() + "Short.5.5.0.log") << "Dorn";
    std::ofstream(directory() + "Zeros.6.6.0.log") << std::string(8'192, '\0');
    std::ofstream(directory() + "Noise.7.7.1.log") << std::string(8'192, '\xff');
    std::filesystem::create_directory(directory() + "Directory.8.8.0.log");
    std::filesystem::create_symlink("/etc/passwd", directory() + "Link.9.9.0.log");
    ASSERT_EQ(mkfifo((directory() + "Pipe.10.a.0.log").c_str(), 0600), 0);

    LogReader reader(m_run);
    EXPECT_EQ(textsOf(reader.last(10)), Texts{"line"});
    EXPECT_EQ(reader.list().size(), 1U);

    clock.print(2, "next");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"next"});
}

TEST_F(LogReaderTest, GarbageBetweenLinesIsPassedOver)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    clock.print(1, "a");
    clock.printRaw("garbage\n\n");
    clock.printRaw(std::string("\0\xff\n", 3));
    clock.print(2, "b");
    EXPECT_EQ(textsOf(reader.next(atOnce)), (Texts{"a", "b"}));
    EXPECT_EQ(textsOf(reader.last(10)), (Texts{"a", "b"}));
    EXPECT_EQ(textsOf(reader.last(1)), Texts{"b"});
}

TEST_F(LogReaderTest, FileMayBecomeASegmentLater)
{
    std::ofstream(directory() + "Clock.1.1.0.log") << std::string(8'192, '\0');
    LogReader reader(m_run);
    EXPECT_TRUE(reader.next(atOnce).empty());
    std::filesystem::remove(directory() + "Clock.1.1.0.log");
    WritingProcess clock(m_run, "Clock", 1);
    clock.print(1, "a");
    EXPECT_EQ(textsOf(reader.next(atOnce)), Texts{"a"});
}

TEST_F(LogReaderTest, SleepingReaderIsWokenByALine)
{
    testkit::ManualClock time; // stands still: nothing but the line ends the wait
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    std::thread printer([&] {
        EXPECT_TRUE(time.waitForSleepers());
        clock.print(1, "wake up");
    });
    EXPECT_EQ(textsOf(reader.next(time.monotonic() + std::chrono::hours(1))), Texts{"wake up"});
    printer.join();
}

TEST_F(LogReaderTest, SleepingReaderIsWokenByAPrint)
{
    useLog("file");
    testkit::ManualClock time;
    LogReader reader(m_run);
    std::thread printer([&] {
        EXPECT_TRUE(time.waitForSleepers());
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "wake up");
    });
    EXPECT_EQ(textsOf(reader.next(time.monotonic() + std::chrono::hours(1))), Texts{"wake up"});
    printer.join();
}

TEST_F(LogReaderTest, AllReadersAreWoken)
{
    testkit::ManualClock time;
    WritingProcess clock(m_run, "Clock", 1);
    std::vector<std::thread> readers;
    std::atomic<int> read{0};
    for (int number = 0; number < 3; ++number) {
        readers.emplace_back([&] {
            LogReader reader(m_run);
            read += static_cast<int>(reader.next(time.monotonic() + std::chrono::hours(1)).size());
        });
    }
    EXPECT_TRUE(time.waitForSleepers(3));

    clock.print(1, "wake up");
    for (std::thread& reader : readers) {
        reader.join();
    }

    EXPECT_EQ(read, 3);
}

TEST_F(LogReaderTest, WaitEndsWithItsTime)
{
    testkit::ManualClock time;
    LogReader reader(m_run);
    std::thread advancer([&] {
        EXPECT_TRUE(time.waitForSleepers());
        time.advance(std::chrono::milliseconds(200));
    });
    EXPECT_TRUE(reader.next(time.monotonic() + std::chrono::milliseconds(200)).empty());
    advancer.join();
}

TEST_F(LogReaderTest, InterruptEndsTheWait)
{
    testkit::ManualClock time;
    LogReader reader(m_run);
    std::thread interrupter([&] {
        EXPECT_TRUE(time.waitForSleepers());
        reader.interrupt();
    });
    EXPECT_TRUE(reader.next(noDeadline - std::chrono::hours(1)).empty());
    interrupter.join();
}

TEST_F(LogReaderTest, InterruptBeforeTheWaitEndsItToo)
{
    WritingProcess clock(m_run, "Clock", 1);
    LogReader reader(m_run);
    reader.interrupt();
    EXPECT_TRUE(reader.next(noDeadline).empty());
    clock.print(1, "a");
    EXPECT_EQ(textsOf(reader.next(noDeadline)), Texts{"a"}); // only one call is interrupted
}

TEST_F(LogReaderTest, ReaderThatDiedAsleepCostsOneWakeUp)
{
    LogControl control(m_run);
    control.announceWait(); // and never waits
    LogControl other(m_run);
    const std::uint32_t before = other.announceWait();
    control.noteLine();
    control.noteLine();
    EXPECT_EQ(other.announceWait(), before + 1);
}

TEST_F(LogReaderTest, ReaderKeepsUpWithAWriterThatTurns)
{
    constexpr int lines = 30'000;
    WritingProcess clock(m_run, "Clock", 1, 2 * SegmentWriter::step);
    LogReader reader(m_run);
    std::atomic<int> printed{0};
    std::atomic<int> read{0};
    std::thread printer([&] {
        for (int number = 0; number < lines; ++number) {
            while (number - read > 500) { // within one segment of the reader: nothing may be missed
                std::this_thread::yield();
            }
            clock.print(number, "number " + std::to_string(number));
            printed = number + 1;
        }
    });

    while (read < lines) {
        for (const LogLine& line : reader.next(noDeadline)) {
            ASSERT_EQ(line.text, "number " + std::to_string(read));
            ++read;
        }
    }

    printer.join();
    EXPECT_EQ(reader.gaps(), 0U);
}

TEST_F(LogReaderTest, ReaderThatIsTooSlowSeesWholeLinesInOrder)
{
    WritingProcess clock(m_run, "Clock", 1, SegmentWriter::step);
    LogReader reader(m_run);
    std::atomic<bool> stop{false};
    std::thread printer([&] {
        for (int number = 1; !stop; ++number) {
            clock.print(number, std::to_string(number) + " " + std::to_string(number));
        }
    });

    std::int64_t latest = 0;
    std::size_t read = 0;
    while (read < 50'000) {
        const std::vector<LogLine> lines = reader.next(noDeadline);
        read += lines.size();
        for (const LogLine& line : lines) {
            const std::int64_t number = line.wall / std::chrono::seconds(1);
            EXPECT_GT(number, latest);
            EXPECT_EQ(line.text, std::to_string(number) + " " + std::to_string(number));
            latest = number;
        }
    }

    stop = true;
    printer.join();
}

TEST_F(LogReaderTest, LinesOfOtherProcessesAreReadWhileTheyRun)
{
    useLog("file");
    LogReader reader(m_run);

    const pid_t child = fork();
    if (child == 0) {
        for (int number = 0; number < 3'000; ++number) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "number %d", number);
        }
        _exit(0);
    }

    int expected = 0;
    while (expected < 3'000) {
        for (const LogLine& line : reader.next(noDeadline)) {
            ASSERT_EQ(line.text, "number " + std::to_string(expected));
            ASSERT_EQ(line.pid, child);
            ++expected;
        }
    }

    waitpid(child, nullptr, 0);
}

TEST_F(LogReaderTest, RunDirectoryThatCannotBeUsedIsRefused)
{
    closeNode();
    setenv("DORN_RUN_DIR", "relative", 1);
    EXPECT_THROW(LogReader(), EnvironmentError);
}

} // namespace
} // namespace dorn::host
