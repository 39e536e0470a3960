// SPDX-License-Identifier: MIT
#include "AaSysLog.h"

#include "AaPro.h"
#include "LogCapture.hpp"
#include "LogFixture.hpp"
#include "ManualClock.hpp"
#include "log/LogName.hpp"
#include "log/LogObserver.hpp"

#include <cerrno>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace dorn::host {
namespace {

using Texts = std::vector<std::string>;

constexpr std::array allSeverities{EAaSysLogSeverityLevel_NotValid, EAaSysLogSeverityLevel_Debug,
                                   EAaSysLogSeverityLevel_Info,     EAaSysLogSeverityLevel_Warning,
                                   EAaSysLogSeverityLevel_Error,    EAaSysLogSeverityLevel_Vip,
                                   EAaSysLogSeverityLevel_NoPrints};

class AaSysLogTest : public LogTest {
protected:
    /// Which severities are kept of lines of a feature, by the macro and by the function behind it.
    Texts keptOf(std::uint32_t feature)
    {
        m_log.clear();
        for (const EAaSysLogSeverityLevel severity : allSeverities) {
            AaSysLogPrintE(severity, feature, "macro");
            (AaSysLogPrintE)(severity, feature, "function");
        }
        return m_log.texts();
    }

    testkit::LogCapture m_log;
};

TEST_F(AaSysLogTest, WarningAndAboveAreKept)
{
    registerFeatures();
    const Texts expected{"Warning 0x20013 macro",  "Warning 0x20013 function", "Error 0x20013 macro",
                         "Error 0x20013 function", "Vip 0x20013 macro",        "Vip 0x20013 function"};
    EXPECT_EQ(keptOf(clocks), expected);
    EXPECT_EQ(keptOf(clocks), expected); // the first line has changed how the macro asks
}

TEST_F(AaSysLogTest, FeatureThatIsOnKeepsAllButNoPrints)
{
    registerFeatures();
    AaConfigRadSetValue(clocks, 1);
    const Texts expected{"NotValid 0x20013 macro", "NotValid 0x20013 function", "Debug 0x20013 macro",
                         "Debug 0x20013 function", "Info 0x20013 macro",        "Info 0x20013 function",
                         "Warning 0x20013 macro",  "Warning 0x20013 function",  "Error 0x20013 macro",
                         "Error 0x20013 function", "Vip 0x20013 macro",         "Vip 0x20013 function"};
    EXPECT_EQ(keptOf(clocks), expected);
    EXPECT_EQ(keptOf(twin).size(), 6U);
}

TEST_F(AaSysLogTest, FeatureIsSwitchedWhileTheProcessRuns)
{
    registerFeatures();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "off");
    AaConfigRadSetValue(clocks, 7);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "on");
    AaConfigRadSetValue(clocks, 0);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, clocks, "off again");
    EXPECT_EQ(m_log.texts(), Texts{"Debug 0x20013 on"});
}

TEST_F(AaSysLogTest, LevelKeepsLinesOfFeaturesThatAreOff)
{
    useLog("none", "info");
    EXPECT_EQ(keptOf(nameless), (Texts{"Info 0x7f0042 macro", "Info 0x7f0042 function", "Warning 0x7f0042 macro",
                                       "Warning 0x7f0042 function", "Error 0x7f0042 macro", "Error 0x7f0042 function",
                                       "Vip 0x7f0042 macro", "Vip 0x7f0042 function"}));
    useLog("none", "1");
    EXPECT_EQ(keptOf(nameless).size(), 10U);
}

TEST_F(AaSysLogTest, LevelNoneKeepsOnlyLinesOfFeaturesThatAreOn)
{
    useLog("none", "none");
    registerFeatures();
    AaConfigRadSetValue(clocks, 1);
    EXPECT_EQ(keptOf(twin), Texts{});
    EXPECT_EQ(keptOf(clocks).size(), 12U);
}

TEST_F(AaSysLogTest, LineWithoutFeatureIsKeptBySeverityAlone)
{
    for (const EAaSysLogSeverityLevel severity : allSeverities) {
        AaSysLogPrint(severity, "macro");
        (AaSysLogPrint)(severity, "function");
    }
    EXPECT_EQ(m_log.texts(), (Texts{"Warning 0x0 macro", "Warning 0x0 function", "Error 0x0 macro",
                                    "Error 0x0 function", "Vip 0x0 macro", "Vip 0x0 function"}));
}

TEST_F(AaSysLogTest, NumberThatIsNoSeverityIsTakenForNotValid)
{
    registerFeatures();
    AaSysLogPrintE(static_cast<EAaSysLogSeverityLevel>(7), clocks, "off");
    AaConfigRadSetValue(clocks, 1);
    AaSysLogPrintE(static_cast<EAaSysLogSeverityLevel>(7), clocks, "on");
    EXPECT_EQ(m_log.texts(), Texts{"NotValid 0x20013 on"});
}

TEST_F(AaSysLogTest, ArgumentsOfALineThatIsNotKeptAreNotEvaluated)
{
    int evaluated = 0;
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "the first line reads the environment");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, nameless, "%d", ++evaluated);
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "%d", ++evaluated);
    EXPECT_EQ(evaluated, 0);
}

TEST_F(AaSysLogTest, ErrnoIsLeftAloneAndPrintable)
{
    useLog("file");
    const char* volatile format = "%s: %m"; // not part of the standard, so hidden from the compiler
    errno = ENOENT;
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, format, "failed"); // the first line, which opens the log
    EXPECT_EQ(errno, ENOENT);
    errno = EACCES;
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, format, "failed");
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(m_log.texts(),
              (Texts{"Warning 0x0 failed: No such file or directory", "Warning 0x0 failed: Permission denied"}));
}

/// What standard error gets; the clock stands at 2025-01-01T00:00:00Z.
class PrintedLineTest : public LogTest {
protected:
    PrintedLineTest() { useLog("stderr"); }

    std::string printed() { return m_output.take(); }
    static std::string line(const std::string& rest) { return "2025-01-01T00:00:00.000000Z " + rest + "\n"; }

    testkit::ManualClock m_clock;
    ErrorOutput m_output;
};

TEST_F(PrintedLineTest, LineTellsTimeSeverityProcessEuAndFeature)
{
    registerFeatures();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, clocks, "PLL %d lost its reference\n", 2);
    EXPECT_EQ(printed(), line("error " + process() + " - CLKS PLL 2 lost its reference"));
}

TEST_F(PrintedLineTest, FeatureWithoutNameIsAHexadecimalNumber)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Vip, 0x20066, "text");
    EXPECT_EQ(printed(), line("vip " + process() + " - 0x20066 text"));
}

TEST_F(PrintedLineTest, FeatureThatIsRegisteredLaterHasItsNameFromThenOn)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, clocks, "before");
    registerFeatures();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, clocks, "after");
    EXPECT_EQ(printed(),
              line("warning " + process() + " - 0x20013 before") + line("warning " + process() + " - CLKS after"));
}

TEST_F(PrintedLineTest, FeaturesThatShareAPlaceAreNotMixedUp)
{
    registerFeatures();
    for (const std::uint32_t feature : {clocks, clocks + 8, clocks, clocks + 8}) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "text");
    }
    const std::string both =
        line("warning " + process() + " - CLKS text") + line("warning " + process() + " - 0x2001b text");
    EXPECT_EQ(printed(), both + both);
}

TEST_F(PrintedLineTest, EuIsNamed)
{
    std::thread([] {
        pthread_setname_np(pthread_self(), "ClockMain");
        AaProEuCurrent(); // makes the thread an EU
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    }).join();
    EXPECT_EQ(printed(), line("warning " + process() + " ClockMain - text"));
}

TEST_F(PrintedLineTest, ThreadThatBecomesAnEuHasItsNameFromThenOn)
{
    std::thread([] {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "before");
        pthread_setname_np(pthread_self(), "Late");
        AaProEuCurrent();
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "after");
    }).join();
    EXPECT_EQ(printed(), line("warning " + process() + " - - before") + line("warning " + process() + " Late - after"));
}

TEST_F(PrintedLineTest, LinesBeforeTheEeHasANameBearTheProgramFileName)
{
    closeNode();
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "before");
    nameLog("Clock");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "after");
    EXPECT_EQ(printed(), line("warning " + process(program_invocation_short_name) + " - - before") +
                             line("warning " + process() + " - - after"));
}

TEST_F(PrintedLineTest, NameWithBlanksStaysOneField)
{
    nameLog("Clock and timing");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(printed(), line("warning " + process("Clock\\x20and\\x20timing") + " - - text"));
}

TEST_F(PrintedLineTest, LongNamesAreCut)
{
    nameLog(std::string(200, 'n'));
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(printed(), line("warning " + process(std::string(80, 'n')) + " - - text"));
}

TEST_F(PrintedLineTest, WrongEnvironmentIsReportedOnce)
{
    useLog("stderr,paper", "loud");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "one");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "two");
    EXPECT_EQ(printed(), "dorn: DORN_LOG: 'paper' is no sink (stderr, file, file:PATH, syslog, none); it is left out\n"
                         "dorn: DORN_LOG_LEVEL: 'loud' is no level (debug, info, warning, error, vip, none, or 1 to "
                         "6); warning is used\n" +
                             line("warning " + process() + " - - one") + line("warning " + process() + " - - two"));
}

TEST_F(PrintedLineTest, SinkThatCannotBeOpenedIsReportedOnceAndLeftOut)
{
    const std::string path = m_node.boardRoot() + "/missing/a.log";
    useLog("stderr,file:" + path);
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "one");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "two");
    EXPECT_EQ(printed(), "dorn: log file '" + path +
                             "' cannot be opened: No such file or directory; the sink is left out\n" +
                             line("warning " + process() + " - - one") + line("warning " + process() + " - - two"));
}

TEST_F(PrintedLineTest, EverySinkGetsTheLine)
{
    const std::string path = m_node.boardRoot() + "/";
    useLog("file:" + path + "a,stderr,file:" + path + "b");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    const std::string expected = line("warning " + process() + " - - text");
    EXPECT_EQ(printed(), expected);
    EXPECT_EQ(m_node.readBoardFile("/a"), expected);
    EXPECT_EQ(m_node.readBoardFile("/b"), expected);
}

TEST_F(PrintedLineTest, NoneKeepsLinesToItself)
{
    useLog("none");
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
    EXPECT_EQ(printed(), "");
}

TEST_F(PrintedLineTest, EnvironmentIsReadAnewOnTheNextNode)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "off");
    closeNode();
    setenv("DORN_LOG_LEVEL", "info", 1);
    nameLog("Other");
    AaSysLogPrint(EAaSysLogSeverityLevel_Info, "on");
    EXPECT_EQ(printed(), line("info " + process("Other") + " - - on"));
}

TEST_F(PrintedLineTest, ChildOfAForkBearsItsOwnProcessId)
{
    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "parent");
    const pid_t child = fork();
    if (child == 0) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "child");
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_EQ(printed(), line("warning " + process() + " - - parent") +
                             line("warning Clock[" + std::to_string(child) + "] - - child"));
}

/// Threads that print; nothing of the test itself takes locks there.
class PrintingThreadsTest : public LogTest {};

TEST_F(PrintingThreadsTest, ForkWhileOthersPrintLeavesAUsableLog)
{
    useLog("file,file:" + m_node.boardRoot() + "/a.log");
    std::atomic<bool> stop{false};
    std::vector<std::thread> printers;
    for (int number = 0; number < 2; ++number) {
        printers.emplace_back([&stop] {
            while (!stop) {
                AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
            }
        });
    }

    for (int round = 0; round < 50; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "child");
            _exit(42);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 42);
    }

    stop = true;
    for (std::thread& printer : printers) {
        printer.join();
    }
}

TEST_F(PrintingThreadsTest, ThreadThatIsCancelledLeavesAUsableLog)
{
    useLog("file:" + m_node.boardRoot() + "/a.log,file");
    std::atomic<bool> isPrinting{false};
    std::thread printer([&isPrinting] {
        for (;;) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "text");
            isPrinting = true;
            pthread_testcancel();
        }
    });

    while (!isPrinting) {
        std::this_thread::yield();
    }
    pthread_cancel(printer.native_handle());
    printer.join();

    AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "after");

    const std::string lines = m_node.readBoardFile("/a.log");
    EXPECT_TRUE(lines.ends_with(" warning " + process() + " - - after\n")) << lines;
}

} // namespace
} // namespace dorn::host
