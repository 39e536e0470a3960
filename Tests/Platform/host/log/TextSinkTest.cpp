// SPDX-License-Identifier: MIT
#include "log/TextSink.hpp"

#include "LogFixture.hpp"
#include "ManualClock.hpp"
#include "OutputCapture.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <syslog.h>
#include <termios.h>
#include <thread>
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

/// Standard error is the one end of a pipe or pair of sockets as long as it lives; the test has the other.
class Reader {
public:
    static constexpr int pipeSize = 4096;

    explicit Reader(bool isSocket = false) : m_original(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        std::array<int, 2> ends{};
        if (isSocket ? socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0 : pipe(ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        fcntl(ends[1], F_SETPIPE_SZ, pipeSize);
        dup2(ends[1], STDERR_FILENO);
        ::close(ends[1]);
        m_end = ends[0];
        fcntl(m_end, F_SETFL, O_NONBLOCK);
    }
    ~Reader()
    {
        dup2(m_original, STDERR_FILENO);
        ::close(m_original);
        die();
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// What there is to read just now.
    std::string read() const
    {
        std::string text;
        std::array<char, pipeSize> part{};
        for (ssize_t size = 0; (size = ::read(m_end, part.data(), part.size())) > 0;) {
            text.append(part.data(), static_cast<std::size_t>(size));
        }
        return text;
    }
    void die()
    {
        if (m_end >= 0) {
            ::close(m_end);
        }
        m_end = -1;
    }

private:
    int m_original;
    int m_end = -1;
};

/// Sees how long the process would wait for a descriptor, and has the time pass at once.
class HastyClock : public Clock {
public:
    Nanoseconds monotonic() const override { return std::chrono::hours(1); }
    Nanoseconds wall() const override { return std::chrono::hours(1); }
    void waitWhile(std::atomic<std::uint32_t>& /*word*/, std::uint32_t /*expected*/, Deadline /*until*/,
                   bool /*shared*/) override
    {
    }
    int waitDescriptors(std::span<pollfd> /*entries*/, Deadline until) override
    {
        waits.push_back(until - monotonic());
        return 0;
    }

    std::vector<Nanoseconds> waits;

private:
    ClockScope m_scope{*this};
};

std::string gapOf(std::size_t lines)
{
    return "dorn: standard error could not be written; lines dropped: " + std::to_string(lines) + "\n";
}

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

TEST(StderrSinkTest, ReaderThatHasGoneDoesNotEndTheProcess)
{
    const auto before = std::signal(SIGPIPE, SIG_DFL);

    for (const bool isSocket : {false, true}) {
        Reader reader(isSocket);
        reader.die();
        const auto sink = openStderrSink();
        sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
        sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    }

    sigset_t pending{};
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    std::signal(SIGPIPE, before);
}

TEST(StderrSinkTest, SignalThatTheProgramHasBlockedStaysBlocked)
{
    sigset_t pipeOnly{};
    sigset_t before{};
    sigset_t after{};
    sigemptyset(&pipeOnly);
    sigaddset(&pipeOnly, SIGPIPE);

    for (const int how : {SIG_BLOCK, SIG_UNBLOCK}) {
        pthread_sigmask(how, &pipeOnly, &before);
        {
            const Reader reader;
            openStderrSink()->write(EAaSysLogSeverityLevel_Warning, plainLine);
        }
        pthread_sigmask(SIG_SETMASK, &before, &after);
        EXPECT_EQ(sigismember(&after, SIGPIPE), how == SIG_BLOCK ? 1 : 0);
    }
}

TEST(StderrSinkTest, ReaderThatHasStoppedIsWaitedForOnceAndThenMissesLines)
{
    constexpr std::size_t lines = 200;
    HastyClock clock;
    const Reader reader;
    const auto sink = openStderrSink();
    for (std::size_t count = 0; count < lines; ++count) {
        sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    }
    EXPECT_EQ(clock.waits, std::vector<Nanoseconds>{std::chrono::milliseconds(100)});
    const std::string line = plainLine;
    const std::string text = reader.read();
    ASSERT_EQ(text.size(), Reader::pipeSize / line.size() * line.size());

    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(reader.read(), gapOf(lines - text.size() / line.size()) + line + line);
}

TEST(StderrSinkTest, LineThatIsCutByAStopIsEndedBeforeTheNext)
{
    const HastyClock clock;
    const Reader reader;
    const auto sink = openStderrSink();
    sink->write(EAaSysLogSeverityLevel_Warning, std::string(2 * Reader::pipeSize, 'x') + "\n");
    EXPECT_EQ(reader.read(), std::string(Reader::pipeSize, 'x'));
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(reader.read(), "\n" + gapOf(1) + plainLine);
}

TEST(StderrSinkTest, SlowReaderMissesNothing)
{
    constexpr int lines = 2000;
    const Reader reader;
    std::string text;
    std::thread logging([] {
        const auto sink = openStderrSink();
        for (int count = 0; count < lines; ++count) {
            sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
        }
    });

    const std::size_t whole = lines * std::string_view(plainLine).size();
    const Deadline until = Clock::get().after(20'000'000);
    while (text.size() < whole && Clock::get().monotonic() < until) {
        text += reader.read();
    }

    logging.join();
    EXPECT_EQ(text.size(), whole);
}

TEST(StderrSinkTest, StoppedTerminalDoesNotHoldTheProcess)
{
    const Variable noColour("NO_COLOR", "1");
    HastyClock clock;
    const Terminal terminal;
    const auto sink = openStderrSink();
    tcflow(STDERR_FILENO, TCOOFF);

    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(clock.waits.size(), 1U);

    tcflow(STDERR_FILENO, TCOON);
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(terminal.readLine(), gapOf(2));
    EXPECT_EQ(terminal.readLine(), plainLine);
}

TEST(StderrSinkTest, PipeInPlaceOfAFileIsSeenAfterAWhile)
{
    testkit::ManualClock clock;
    const testkit::OutputCapture output;
    const auto sink = openStderrSink();
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    clock.advance(std::chrono::milliseconds(100));

    const auto before = std::signal(SIGPIPE, SIG_DFL);
    {
        Reader reader;
        reader.die();
        sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    }
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    std::signal(SIGPIPE, before);

    EXPECT_EQ(output.standardError(), plainLine + gapOf(1) + plainLine);
}

TEST(StderrSinkTest, FlagsOfTheSharedDescriptorStay)
{
    const Reader reader;
    const int before = fcntl(STDERR_FILENO, F_GETFL);
    openStderrSink()->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(fcntl(STDERR_FILENO, F_GETFL), before);
    EXPECT_EQ(reader.read(), plainLine);
}

TEST(StderrSinkTest, WithoutDescriptorsLinesAreWrittenWhileThereIsRoom)
{
    HastyClock clock;
    const Reader reader;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = STDERR_FILENO + 1;
    setrlimit(RLIMIT_NOFILE, &none);

    const auto sink = openStderrSink();
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    sink->write(EAaSysLogSeverityLevel_Warning, plainLine); // the look ahead knows no smaller room than a pipe's page
    setrlimit(RLIMIT_NOFILE, &before);

    EXPECT_EQ(clock.waits.size(), 1U);
    EXPECT_EQ(reader.read(), plainLine);

    sink->write(EAaSysLogSeverityLevel_Warning, plainLine);
    EXPECT_EQ(reader.read(), gapOf(1) + plainLine);
}

TEST(StderrSinkTest, ClosedStandardErrorIsNoHarm)
{
    const int original = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    ::close(STDERR_FILENO);
    openStderrSink()->write(EAaSysLogSeverityLevel_Warning, plainLine);
    dup2(original, STDERR_FILENO);
    ::close(original);
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
