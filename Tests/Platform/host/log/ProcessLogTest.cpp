// SPDX-License-Identifier: MIT
#include "log/ProcessLog.hpp"

#include "AaSysLog.h"
#include "FailingFilePort.hpp"
#include "LogCapture.hpp"
#include "LogFixture.hpp"
#include "ManualClock.hpp"
#include "log/LogReader.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace dorn::host {
namespace {

using testkit::FailingFilePort;
using testkit::FileOperation;
using Texts = std::vector<std::string>;

std::vector<LogLine> allLines()
{
    return LogReader().last(1'000'000);
}

Texts allTexts()
{
    Texts texts;
    for (const LogLine& line : allLines()) {
        texts.push_back(line.text);
    }
    return texts;
}

/// The log in the run directory, as everybody opens it.
class ProcessLogTest : public LogTest {
protected:
    ProcessLogTest() { useLog("file"); }

    std::string directory() const { return m_node.nodeDirectory() + "/log"; }

    std::set<std::string> files() const
    {
        std::set<std::string> names;
        if (std::filesystem::exists(directory())) {
            for (const auto& entry : std::filesystem::directory_iterator(directory())) {
                names.insert(entry.path().filename());
            }
        }
        return names;
    }

    /// The file names that begin with an EE name and process id.
    long filesOf(const std::string& eeNameAndPid) const
    {
        const std::set<std::string> names = files();
        return std::count_if(names.begin(), names.end(),
                             [&](const std::string& name) { return name.starts_with(eeNameAndPid + "."); });
    }

    static void print(const char* text) { AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "%s", text); }
};

TEST_F(ProcessLogTest, LineReadsBackWithAllItsParts)
{
    const testkit::ManualClock clock;
    registerFeatures();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, clocks, "PLL %d\nlost", 2);
    const LogLine expected{clock.wall(),  EAaSysLogSeverityLevel_Error, "Clock", getpid(), "", clocks, "CLKS",
                           "PLL 2\\nlost"};
    EXPECT_EQ(allLines(), std::vector<LogLine>{expected});
}

TEST_F(ProcessLogTest, FileIsPlainTextBehindItsHeader)
{
    const testkit::ManualClock clock;
    print("one");
    print("two");
    std::ifstream file(directory() + "/" + *files().begin());
    file.seekg(segmentTextBegin);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "2025-01-01T00:00:00.000000Z warning " + process() + " - - one");
    std::getline(file, line);
    EXPECT_EQ(line, "2025-01-01T00:00:00.000000Z warning " + process() + " - - two");
}

TEST_F(ProcessLogTest, ProcessThatPrintsNothingLeavesNothing)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "off");
    EXPECT_EQ(files(), std::set<std::string>{});
}

TEST_F(ProcessLogTest, OthersCannotReadIt)
{
    print("text");
    struct stat status {};
    ASSERT_EQ(stat((directory() + "/" + *files().begin()).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(stat(directory().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(ProcessLogTest, IdOfAFeatureReadsBackUnlessItsNameIsAnothersToo)
{
    registerFeatures();
    for (const std::uint32_t feature : {clocks, nameless, twin}) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "text");
    }

    std::vector<LogLine> lines = allLines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].featureId, clocks);
    EXPECT_EQ(lines[1].featureId, nameless);
    EXPECT_EQ(lines[2].featureId, twin);

    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, otherTwin, "text");
    lines = allLines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[3].featureName, "EAC");
    EXPECT_EQ(lines[3].featureId, 0U);
}

TEST_F(ProcessLogTest, LineCostsNoFileOperation)
{
    print("opens the log");
    const FailingFilePort port(FileOperation::Write, 1'000'000, EIO);
    for (int number = 0; number < 300; ++number) {
        print("text");
    }
    for (std::size_t operation = 0; operation < testkit::fileOperationCount; ++operation) {
        EXPECT_EQ(port.calls(static_cast<FileOperation>(operation)), 0U) << operation;
    }
}

TEST_F(ProcessLogTest, LinesOfAKilledProcessAreThere)
{
    const pid_t child = fork();
    if (child == 0) {
        for (int number = 0; number < 5'000; ++number) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "number %d", number);
        }
        raise(SIGKILL);
    }

    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));

    const Texts texts = allTexts();
    ASSERT_EQ(texts.size(), 5'000U);
    EXPECT_EQ(texts.front(), "number 0");
    EXPECT_EQ(texts.back(), "number 4999");
}

TEST_F(ProcessLogTest, ProcessKilledAnywhereLeavesWholeLines)
{
    for (int round = 0; round < 10; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            for (int number = 0;; ++number) {
                AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "round %d number %d", round, number);
            }
        }
        LogReader reader;

        std::vector<LogLine> lines;
        while (lines.size() < 100) {
            for (LogLine& line : reader.next(noDeadline)) {
                lines.push_back(std::move(line));
            }
        }

        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const std::vector<LogLine> latest = reader.last(100);
        ASSERT_EQ(latest.size(), 100U);
        for (const LogLine& line : latest) {
            EXPECT_TRUE(line.text.starts_with("round " + std::to_string(round) + " number ")) << line.text;
        }
    }
}

TEST_F(ProcessLogTest, OnlyTheLatestLinesAreKept)
{
    const std::string filling(200, 'x');
    constexpr int count = 8'000; // some 2 MB
    for (int number = 0; number < count; ++number) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "%s %d", filling.c_str(), number);
    }

    EXPECT_EQ(files().size(), segmentsPerProcess);
    std::uintmax_t bytes = 0;
    for (const std::string& name : files()) {
        bytes += std::filesystem::file_size(directory() + "/" + name);
    }
    EXPECT_EQ(bytes, segmentsPerProcess * ProcessLog::defaultSegmentSize);

    const Texts texts = allTexts();
    ASSERT_GE(texts.size() * 250, ProcessLog::defaultSegmentSize);
    for (std::size_t place = 0; place < texts.size(); ++place) {
        ASSERT_EQ(texts[place], filling + " " + std::to_string(static_cast<std::size_t>(count) - texts.size() + place));
    }
}

TEST_F(ProcessLogTest, FeatureKeepsItsIdWhenItsSegmentIsBegunAnew)
{
    registerFeatures();
    const std::string filling(4'000, 'x');
    for (int number = 0; number < 1'000; ++number) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, number % 2 == 0 ? clocks : twin, "%s", filling.c_str());
    }
    for (const LogLine& line : allLines()) {
        EXPECT_EQ(line.featureId, line.featureName == "CLKS" ? clocks : twin);
    }
}

TEST_F(ProcessLogTest, MoreFeaturesThanTheHeaderHoldsAreNamedAllTheSame)
{
    constexpr std::uint32_t features = SegmentHeader::maxFeatures + 10;
    AaConfigRadRegisterDomain(3, "Many", [] {
        AaConfigRadSetMaxTagCount(3, 0x30000 + features);
        for (std::uint32_t index = 0; index < features; ++index) {
            AaConfigRadSetDefault(0x30000 + index, ("F" + std::to_string(index)).c_str(), 0);
        }
    });

    for (std::uint32_t index = 0; index < features; ++index) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, 0x30000 + index, "text");
    }

    const std::vector<LogLine> lines = allLines();
    ASSERT_EQ(lines.size(), features);
    for (std::uint32_t index = 0; index < features; ++index) {
        EXPECT_EQ(lines[index].featureName, "F" + std::to_string(index));
        EXPECT_EQ(lines[index].featureId, index < SegmentHeader::maxFeatures ? 0x30000 + index : 0);
    }
}

TEST_F(ProcessLogTest, ThreadsLoseNoLine)
{
    constexpr int threads = 4;
    constexpr int linesOfEach = 1'000;
    std::vector<std::thread> printers;
    for (int thread = 0; thread < threads; ++thread) {
        printers.emplace_back([thread] {
            for (int number = 0; number < linesOfEach; ++number) {
                AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "%d/%d", thread, number);
            }
        });
    }

    for (std::thread& printer : printers) {
        printer.join();
    }

    const Texts texts = allTexts();
    EXPECT_EQ(texts.size(), static_cast<std::size_t>(threads) * linesOfEach);
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), texts.size());
}

TEST_F(ProcessLogTest, FilesBearTheNameThatTheEeGets)
{
    closeNode();
    print("before");
    EXPECT_EQ(filesOf(program_invocation_short_name + ("." + std::to_string(getpid()))), 1);
    nameLog("Clock");
    print("after");
    EXPECT_EQ(files().size(), 1U);
    EXPECT_EQ(filesOf("Clock." + std::to_string(getpid())), 1);
    const std::vector<LogLine> lines = allLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].eeName, program_invocation_short_name);
    EXPECT_EQ(lines[1].eeName, "Clock");
}

TEST_F(ProcessLogTest, ClosedNodeIsOpenedAgainByTheNextLine)
{
    print("one");
    closeNode();
    EXPECT_FALSE(LogReader().list().at(0).alive);
    nameLog("Clock");
    print("two");
    EXPECT_EQ(files().size(), 2U);
    EXPECT_EQ(allTexts(), (Texts{"one", "two"}));
}

TEST_F(ProcessLogTest, TwoLogsOfOneTimeAreTwo)
{
    const testkit::ManualClock clock;
    print("one");
    closeNode();
    nameLog("Clock");
    print("two");
    EXPECT_EQ(files().size(), 2U);
    EXPECT_EQ(allTexts(), (Texts{"one", "two"}));
}

TEST_F(ProcessLogTest, ChildOfAForkHasALogOfItsOwn)
{
    print("parent before");
    const pid_t child = fork();
    if (child == 0) {
        for (int number = 0; number < 20'000; ++number) { // more than a segment
            print("child");
        }
        _exit(0);
    }

    waitpid(child, nullptr, 0);
    print("parent after");
    EXPECT_EQ(filesOf("Clock." + std::to_string(child)), 2);

    Texts ofParent;
    for (const LogLine& line : allLines()) {
        if (line.pid == getpid()) {
            ofParent.push_back(line.text);
        } else {
            EXPECT_EQ(line.pid, child);
            EXPECT_EQ(line.text, "child");
        }
    }
    EXPECT_EQ(ofParent, (Texts{"parent before", "parent after"}));
}

TEST_F(ProcessLogTest, ChildThatPrintsNothingDoesNotKeepItsDeadParentAlive)
{
    int toChild[2];
    int toTest[2];
    ASSERT_EQ(pipe(toChild), 0);
    ASSERT_EQ(pipe(toTest), 0);

    const pid_t parent = fork();
    if (parent == 0) {
        print("parent");
        const pid_t child = fork();
        if (child == 0) {
            ::close(toChild[1]);
            char byte = 0;
            [[maybe_unused]] const ssize_t told = ::write(toTest[1], &byte, 1); // it has come out of fork()
            _exit(static_cast<int>(::read(toChild[0], &byte, 1)));              // until the test lets it go
        }
        _exit(0);
    }

    waitpid(parent, nullptr, 0);
    char byte = 0;
    ASSERT_EQ(::read(toTest[0], &byte, 1), 1);

    const std::vector<ProcessLogInfo> logs = LogReader().list();
    ASSERT_EQ(logs.size(), 1U);
    EXPECT_EQ(logs[0].pid, parent);
    EXPECT_FALSE(logs[0].alive);

    for (const int end : {toChild[0], toChild[1], toTest[0], toTest[1]}) {
        ::close(end);
    }
}

TEST_F(ProcessLogTest, RunDirectoryThatCannotBeUsedIsReportedOnce)
{
    setenv("DORN_RUN_DIR", "relative", 1);
    ErrorOutput output;
    const testkit::LogCapture log;
    print("one");
    print("two");
    EXPECT_EQ(output.take(), "dorn: run directory 'relative': must be an absolute path; the log is not kept there\n");
    EXPECT_EQ(log.texts(), (Texts{"Warning 0x0 one", "Warning 0x0 two"}));
}

TEST_F(ProcessLogTest, LogDirectoryThatIsALinkIsRefused)
{
    std::filesystem::create_directory_symlink(m_node.boardRoot(), directory());
    ErrorOutput output;
    print("text");
    EXPECT_EQ(output.take(), "dorn: run directory '" + directory() +
                                 "': is reached through a symbolic link or is no directory; name the real "
                                 "directory; the log is not kept there\n");
    EXPECT_TRUE(std::filesystem::is_empty(m_node.boardRoot()));
}

/// A disk that is full for a while; the clock stands unless a test moves it.
class FullDiskLogTest : public ProcessLogTest {
protected:
    /// Makes the store that a node has as a rule.
    FullDiskLogTest() { const LogControl store(PerNode<RunDirectory>::get()); }

    std::string complaint() const
    {
        return "dorn: log '" + directory() +
               "' cannot be written: No space left on device; its lines are dropped until it can\n";
    }
    std::string relief(int count) const
    {
        return "dorn: log '" + directory() + "' is written again; lines dropped: " + std::to_string(count) + "\n";
    }
    void letRetryPeriodPass() { m_clock.advance(ProcessLog::retryPeriod); }

    testkit::ManualClock m_clock;
    ErrorOutput m_output;
};

TEST_F(FullDiskLogTest, LinesAreDroppedAndCountedUntilThereIsRoom)
{
    {
        const testkit::FullDisk disk;
        print("lost 1");
        print("lost 2");
        letRetryPeriodPass();
        print("lost 3");
    }
    letRetryPeriodPass();
    print("kept 1");
    print("kept 2");

    EXPECT_EQ(m_output.take(), complaint() + relief(3));
    EXPECT_EQ(allTexts(), (Texts{"Lines that could not be written: 3 (No space left on device)", "kept 1", "kept 2"}));
    EXPECT_EQ(LogReader().list().at(0).dropped, 3U);
}

TEST_F(FullDiskLogTest, DiskThatIsFullFromTheStartIsNoDifferent)
{
    std::filesystem::remove(m_node.nodeDirectory() + "/log.control");
    {
        const testkit::FullDisk disk;
        print("lost");
    }
    letRetryPeriodPass();
    print("kept");
    EXPECT_EQ(allTexts(), (Texts{"Lines that could not be written: 1 (store '" + m_node.nodeDirectory() +
                                     "/log.control' cannot be created: No space left on device)",
                                 "kept"}));
}

TEST_F(FullDiskLogTest, DirectoryThatCannotBeMadeForAWhileIsTriedAgain)
{
    {
        const FailingFilePort port(FileOperation::MakeDirectory, 1, EMFILE);
        print("lost 1");
        print("lost 2");
        EXPECT_EQ(port.calls(FileOperation::MakeDirectory), 1U);
    }
    letRetryPeriodPass();
    print("kept 1");
    print("kept 2");

    const std::string reason = "run directory '" + directory() +
                               "': cannot be made: Too many open files; set DORN_RUN_DIR to a directory of your own";
    EXPECT_EQ(m_output.take(), "dorn: " + reason + "; the log is not kept there\n" + relief(2));
    EXPECT_EQ(allTexts(), (Texts{"Lines that could not be written: 2 (" + reason + ")", "kept 1", "kept 2"}));
    EXPECT_EQ(LogReader().list().at(0).dropped, 2U);
}

TEST_F(FullDiskLogTest, DirectoryThatCannotBeMadeIsReportedOnce)
{
    {
        const FailingFilePort first(FileOperation::MakeDirectory, 1, EMFILE);
        print("lost 1");
    }
    letRetryPeriodPass();
    {
        const FailingFilePort second(FileOperation::MakeDirectory, 1, EMFILE);
        print("lost 2");
        EXPECT_TRUE(second.hasFailed());
    }

    EXPECT_EQ(m_output.take(), "dorn: run directory '" + directory() +
                                   "': cannot be made: Too many open files; set DORN_RUN_DIR to a directory of your "
                                   "own; the log is not kept there\n");
}

TEST_F(FullDiskLogTest, ReportThatNobodyReadsDoesNotEndTheProcess)
{
    const pid_t child = fork();
    if (child == 0) {
        int ends[2];
        std::signal(SIGPIPE, SIG_DFL);
        if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0) {
            _exit(2);
        }
        ::close(ends[0]);
        const testkit::FullDisk disk;
        print("lost");
        _exit(0);
    }

    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(FullDiskLogTest, LineAboutTheGapIsAWarningOfTheProcess)
{
    {
        const testkit::FullDisk disk;
        print("lost");
    }

    letRetryPeriodPass();
    print("kept");

    const LogLine expected{m_clock.wall(),
                           EAaSysLogSeverityLevel_Warning,
                           "Clock",
                           getpid(),
                           "",
                           0,
                           "",
                           "Lines that could not be written: 1 (No space left on device)"};
    EXPECT_EQ(allLines().at(0), expected);
}

TEST_F(FullDiskLogTest, RoomIsNotAskedForWithEveryLine)
{
    const testkit::FullDisk disk;
    const FailingFilePort port(FileOperation::Write, 1'000'000, EIO);
    for (int number = 0; number < 100; ++number) {
        print("lost");
    }
    EXPECT_EQ(port.calls(FileOperation::Reserve), 1U);
    letRetryPeriodPass();
    print("lost");
    EXPECT_EQ(port.calls(FileOperation::Reserve), 2U);
}

TEST_F(FullDiskLogTest, FullDiskInTheMiddleOfASegmentLosesNothingThatIsThere)
{
    const std::string filling(1'000, 'x');
    print("first");
    {
        const testkit::FullDisk disk;
        for (int number = 0; number < 200; ++number) {
            print(filling.c_str());
        }
    }

    letRetryPeriodPass();
    print("last");

    const Texts texts = allTexts();
    EXPECT_EQ(texts.front(), "first");
    EXPECT_EQ(texts.back(), "last");
    const auto written = texts.size() - 3; // without the first, the last and the one about the gap
    EXPECT_EQ(texts.at(texts.size() - 2),
              "Lines that could not be written: " + std::to_string(200 - written) + " (No space left on device)");
    EXPECT_GE(written, 50U);
    EXPECT_EQ(m_output.take(), complaint() + relief(static_cast<int>(200 - written)));
}

TEST_F(FullDiskLogTest, ShorterLineDoesNotSlipThrough)
{
    print("first");
    {
        const testkit::FullDisk disk;
        for (int number = 0; number < 80; ++number) {
            print(std::string(1'000, 'x').c_str());
        }
        print("short");
    }
    EXPECT_EQ(m_output.take(), complaint());
    EXPECT_EQ(allTexts().back(), std::string(1'000, 'x'));
}

TEST_F(FullDiskLogTest, FullDiskAtTheSecondSegmentKeepsTheFirst)
{
    const std::string filling(4'000, 'x');
    {
        // Room for the first segment and a little: the header's step is part of a segment.
        const testkit::FullDisk disk(ProcessLog::defaultSegmentSize + 1'000);
        for (int number = 0; number < 200; ++number) {
            print(filling.c_str());
        }
        EXPECT_EQ(files().size(), 1U);
    }

    letRetryPeriodPass();
    print("last");
    EXPECT_EQ(allTexts().back(), "last");
}

TEST_F(FullDiskLogTest, FileThatCouldNotBeReservedIsRemoved)
{
    const testkit::FullDisk disk;
    print("lost");
    EXPECT_EQ(files(), std::set<std::string>{});
}

TEST_F(FullDiskLogTest, OtherErrorsAreToldAsTheyAre)
{
    const FailingFilePort port(FileOperation::Open, 2, EMFILE);
    print("lost");
    EXPECT_EQ(m_output.take(), "dorn: log '" + directory() +
                                   "' cannot be written: Too many open files; its lines are dropped until it "
                                   "can\n");
}

TEST_F(FullDiskLogTest, ChildOfAForkDoesNotInheritTheGap)
{
    {
        const testkit::FullDisk disk;
        print("lost");
    }
    const pid_t child = fork();
    if (child == 0) {
        print("child");
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_EQ(allTexts(), Texts{"child"});
}

} // namespace
} // namespace dorn::host
