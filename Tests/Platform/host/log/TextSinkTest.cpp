// SPDX-License-Identifier: MIT
#include "log/TextSink.hpp"

#include "LogFixture.hpp"
#include "OutputCapture.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <syslog.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

std::vector<std::string> syslogLines;

void noteSyslog(int priority, const char* format, va_list arguments)
{
    std::array<char, 256> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    syslogLines.push_back(std::to_string(priority) + " " + text.data());
}

} // namespace

// In place of the C library's: what the system's log daemon would get.
extern "C" void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    noteSyslog(priority, format, arguments);
    va_end(arguments);
}

extern "C" void __syslog_chk(int priority, int /*flag*/, const char* format, ...) // NOLINT
{
    va_list arguments;
    va_start(arguments, format);
    noteSyslog(priority, format, arguments);
    va_end(arguments);
}

namespace dorn::host {
namespace {

constexpr const char* plainLine = "2025-11-21T09:18:01.123456Z warning Clock[1] - - text\n";

/// Sets environment variables until it goes.
class Variable {
public:
    Variable(const char* name, const char* value) : m_name(name)
    {
        if (const char* const previous = std::getenv(name)) {
            m_previous = previous;
            m_wasSet = true;
        }
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { m_wasSet ? setenv(m_name, m_previous.c_str(), 1) : unsetenv(m_name); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* m_name;
    std::string m_previous;
    bool m_wasSet = false;
};

/// Standard error is a terminal as long as it lives.
class Terminal {
public:
    Terminal() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), m_original(dup(STDERR_FILENO))
    {
        grantpt(m_master);
        unlockpt(m_master);
        const int slave = ::open(ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        tcgetattr(slave, &settings);
        cfmakeraw(&settings);
        tcsetattr(slave, TCSANOW, &settings);
        dup2(slave, STDERR_FILENO);
        ::close(slave);
    }
    ~Terminal()
    {
        dup2(m_original, STDERR_FILENO);
        ::close(m_original);
        ::close(m_master);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// What has been shown up to the next line feed.
    std::string readLine() const
    {
        std::string line;
        for (char character = 0; character != '\n' && ::read(m_master, &character, 1) == 1;) {
            line += character;
        }
        return line;
    }

private:
    int m_master;
    int m_original;
};

std::string shownOnTerminal(EAaSysLogSeverityLevel severity, const char* line)
{
    const Terminal terminal;
    openStderrSink()->write(severity, line);
    return terminal.readLine();
}

TEST(StderrSinkTest, LineIsWrittenAsItIs)
{
    std::optional<testkit::OutputCapture> output(std::in_place);
    openStderrSink()->write(EAaSysLogSeverityLevel_Warning, plainLine);
    const std::string error = output->standardError();
    const std::string standard = output->standardOutput();
    output.reset();
    EXPECT_EQ(error, plainLine);
    EXPECT_EQ(standard, "");
}

TEST(StderrSinkTest, TerminalShowsTheSeverityInColour)
{
    const Variable terminal("TERM", "xterm");
    const Variable noColour("NO_COLOR", nullptr);
    EXPECT_EQ(shownOnTerminal(EAaSysLogSeverityLevel_Warning, plainLine),
              "2025-11-21T09:18:01.123456Z \x1b[33m\x1b[1mwarning\x1b[m Clock[1] - - text\n");
}

TEST(StderrSinkTest, EachSeverityHasItsColour)
{
    const Variable terminal("TERM", "xterm");
    const Variable noColour("NO_COLOR", nullptr);
    std::vector<std::string> shown;
    for (int number = 0; number < EAaSysLogSeverityLevel_NoPrints; ++number) {
        const auto severity = static_cast<EAaSysLogSeverityLevel>(number);
        const std::string line = "2025-11-21T09:18:01.123456Z x Clock[1] - - text\n";
        const std::string text = shownOnTerminal(severity, line.c_str());
        shown.push_back(text.substr(28, text.find('x') - 28));
    }
    EXPECT_EQ(shown, (std::vector<std::string>{"\x1b[36m", "\x1b[36m", "\x1b[32m", "\x1b[33m\x1b[1m", "\x1b[31m\x1b[1m",
                                               "\x1b[1m\x1b[41m"}));
}

TEST(StderrSinkTest, NoColorIsHonoured)
{
    const Variable terminal("TERM", "xterm");
    const Variable noColour("NO_COLOR", "1");
    EXPECT_EQ(shownOnTerminal(EAaSysLogSeverityLevel_Warning, plainLine), plainLine);
}

TEST(StderrSinkTest, EmptyNoColorDoesNotCount)
{
    const Variable terminal("TERM", "xterm");
    const Variable noColour("NO_COLOR", "");
    EXPECT_NE(shownOnTerminal(EAaSysLogSeverityLevel_Warning, plainLine), plainLine);
}

TEST(StderrSinkTest, TerminalWithoutColoursGetsNone)
{
    const Variable noColour("NO_COLOR", nullptr);
    for (const char* const type : {static_cast<const char*>(nullptr), "dumb"}) {
        const Variable terminal("TERM", type);
        EXPECT_EQ(shownOnTerminal(EAaSysLogSeverityLevel_Warning, plainLine), plainLine);
    }
}

TEST(FileSinkTest, LineIsWrittenAsItIs)
{
    const testkit::TestNode node;
    openFileSink(node.boardRoot() + "/a.log")->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(node.readBoardFile("/a.log"), plainLine);
}

TEST(FileSinkTest, LimitsAreHandedOn)
{
    const testkit::TestNode node;
    openFileSink(node.boardRoot() + "/a.log", {1, 1})->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(node.readBoardFile("/a.log.1"), plainLine);
}

TEST(SyslogSinkTest, DaemonGetsTheLineWithoutItsTime)
{
    const testkit::TestNode node;
    node.writeBoardFile("/socket", "");
    syslogLines.clear();
    const auto sink = openSyslogSink(node.boardRoot() + "/socket");
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(syslogLines, std::vector<std::string>{std::to_string(LOG_WARNING) + " warning Clock[1] - - text"});
}

TEST(SyslogSinkTest, SeveritiesHaveTheirPriorities)
{
    const testkit::TestNode node;
    node.writeBoardFile("/socket", "");
    syslogLines.clear();
    const auto sink = openSyslogSink(node.boardRoot() + "/socket");
    std::vector<std::string> expected;
    for (const int priority : {LOG_DEBUG, LOG_DEBUG, LOG_INFO, LOG_WARNING, LOG_ERR, LOG_CRIT}) {
        sink->write(static_cast<EAaSysLogSeverityLevel>(expected.size()), plainLine);
        expected.push_back(std::to_string(priority) + " warning Clock[1] - - text");
    }
    EXPECT_EQ(syslogLines, expected);
}

TEST(SyslogSinkTest, PercentInALineIsText)
{
    const testkit::TestNode node;
    node.writeBoardFile("/socket", "");
    syslogLines.clear();
    openSyslogSink(node.boardRoot() + "/socket")
        ->write(EAaSysLogSeverityLevel_Info, "2025-11-21T09:18:01.123456Z info Clock[1] - - 100%s\n");
    EXPECT_EQ(syslogLines, std::vector<std::string>{std::to_string(LOG_INFO) + " info Clock[1] - - 100%s"});
}

TEST(SyslogSinkTest, WithoutDaemonThereIsNoSink)
{
    const testkit::TestNode node;
    try {
        openSyslogSink(node.boardRoot() + "/socket");
        FAIL();
    } catch (const EnvironmentError& error) {
        EXPECT_EQ(error.what(),
                  "log daemon at '" + node.boardRoot() + "/socket' cannot be reached: No such file or directory");
    }
}

} // namespace
} // namespace dorn::host
