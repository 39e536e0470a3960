// SPDX-License-Identifier: MIT
#include "SupervisorFifo.h"

#include "../Firmware/SyslogCapture.hpp"
#include "../TestKit/OpenDescriptors.hpp"
#include "Bound.hpp"
#include "FailNth.hpp"
#include "TestNode.hpp"

#include "AaFile.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

extern "C" std::int32_t writeSupervisorFifoInC(const char* text, std::size_t size);

namespace dorn::test {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testkit::FailNth;

bool isPipeSignalPending()
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

/// The other end of the pipe.
class Reader {
public:
    /// @param flags O_NONBLOCK: does not wait for a writer to open
    explicit Reader(const std::string& place, int flags = O_NONBLOCK)
        : m_descriptor(open(place.c_str(), O_RDONLY | O_CLOEXEC | flags))
    {
        fcntl(m_descriptor, F_SETFL, 0);
    }
    ~Reader() { leave(); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void leave()
    {
        if (m_descriptor >= 0) {
            close(std::exchange(m_descriptor, -1));
        }
    }
    std::string take(std::size_t size) const
    {
        std::string text(size, '\0');
        const ssize_t count = read(m_descriptor, text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

private:
    int m_descriptor;
};

class SupervisorFifoTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(AaFileCreateDir("/tmp"), 0); }
    void TearDown() override
    {
        EXPECT_FALSE(isPipeSignalPending());
        EXPECT_EQ(testkit::openDescriptors(), m_descriptors);
    }

    std::string place() const { return m_node.boardPath("/tmp/SupervisorFifo"); }
    void makeFifo() const { ASSERT_EQ(mkfifo(place().c_str(), 0600), 0); }
    static std::int32_t writeText(const std::string& text) { return SupervisorFifoWrite(text.size(), text.data()); }

    testkit::TestNode m_node;
    SyslogCapture m_syslog;
    std::ptrdiff_t m_descriptors = testkit::openDescriptors();
};

TEST_F(SupervisorFifoTest, NullPayloadIsAnError)
{
    makeFifo();

    EXPECT_EQ(SupervisorFifoWrite(5, nullptr), 1);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: Payload pointer is NULL."));
}

TEST_F(SupervisorFifoTest, MissingPipeIsNotWaitedFor)
{
    EXPECT_EQ(writeText("hello"), 1);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("info SupervisorFifoWrite: /tmp/SupervisorFifo is missing"));
}

TEST_F(SupervisorFifoTest, NullPayloadIsAnErrorAlsoWithoutPipe)
{
    EXPECT_EQ(SupervisorFifoWrite(0, nullptr), 1);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: Payload pointer is NULL."));
}

TEST_F(SupervisorFifoTest, PipeInAMissingFolderIsMissing)
{
    ASSERT_EQ(rmdir(m_node.boardPath("/tmp").c_str()), 0);
    EXPECT_EQ(writeText("hello"), 1);
    m_node.writeBoardFile("/tmp", "no folder");
    EXPECT_EQ(writeText("hello"), 1);

    EXPECT_THAT(m_syslog.texts(), Each("info SupervisorFifoWrite: /tmp/SupervisorFifo is missing"));
    EXPECT_THAT(m_syslog.texts(), SizeIs(2));
}

TEST_F(SupervisorFifoTest, PipeWhosePathThePlatformCannotTranslateIsMissing)
{
    makeFifo();
    const Reader reader(place());
    const FailNth<AaFileGetBoardPath> path(1);

    EXPECT_EQ(writeText("hello"), 1);

    EXPECT_TRUE(path.hasFailed());
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info SupervisorFifoWrite: /tmp/SupervisorFifo is missing"));
}

TEST_F(SupervisorFifoTest, PipeThatCannotBeLookedAtIsNotCalledMissing)
{
    ASSERT_EQ(symlink(std::string(300, 'x').c_str(), place().c_str()), 0); // no file has so long a name

    EXPECT_EQ(writeText("hello"), 1);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: Fifo open failed. errno 36"));
}

TEST_F(SupervisorFifoTest, MessageIsWritten)
{
    makeFifo();
    const Reader reader(place());

    EXPECT_EQ(writeText("hello"), 0);

    EXPECT_EQ(reader.take(100), "hello");
    EXPECT_EQ(reader.take(100), ""); // closed
    EXPECT_THAT(m_syslog.texts(), ElementsAre("info SupervisorFifoWrite: 5 bytes written successfully."));
}

TEST_F(SupervisorFifoTest, EmptyMessageIsWritten)
{
    makeFifo();
    const Reader reader(place());

    EXPECT_EQ(SupervisorFifoWrite(0, ""), 0);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("info SupervisorFifoWrite: 0 bytes written successfully."));
}

TEST_F(SupervisorFifoTest, ReaderIsWaitedFor)
{
    makeFifo();
    auto result = std::async(std::launch::async, [] { return writeText("late"); });
    EXPECT_EQ(result.wait_for(20ms), std::future_status::timeout);

    const Reader reader(place(), 0); // waits for the writer in its turn
    EXPECT_EQ(reader.take(10), "late");

    EXPECT_EQ(result.get(), 0);
}

TEST_F(SupervisorFifoTest, PipeThatCannotBeOpenedIsAnError)
{
    ASSERT_EQ(mkdir(place().c_str(), 0700), 0);

    EXPECT_EQ(writeText("hello"), 1);

    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: Fifo open failed. errno 21"));
}

TEST_F(SupervisorFifoTest, SignalEndsTheWaitForAReader)
{
    makeFifo();
    struct sigaction handler {};
    struct sigaction previous {};
    handler.sa_handler = [](int) {};
    sigaction(SIGUSR1, &handler, &previous);
    std::promise<pthread_t> thread;
    auto result = std::async(std::launch::async, [&thread] {
        thread.set_value(pthread_self());
        return writeText("hello");
    });

    const pthread_t waiting = thread.get_future().get();
    const auto until = std::chrono::steady_clock::now() + testkit::generousBound;
    while (result.wait_for(1ms) != std::future_status::ready && std::chrono::steady_clock::now() < until) {
        pthread_kill(waiting, SIGUSR1); // one may come before the thread waits
    }

    EXPECT_EQ(result.get(), 1);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: Fifo open failed. errno 4"));
    sigaction(SIGUSR1, &previous, nullptr);
}

TEST_F(SupervisorFifoTest, ReaderThatGoesAwayInTheMiddleIsAnErrorAndNoSignal)
{
    makeFifo();
    auto result = std::async(std::launch::async, [] {
        const std::string large(1'000'000, 'x');
        const std::int32_t status = writeText(large);
        EXPECT_FALSE(isPipeSignalPending());
        return status;
    });
    Reader reader(place(), 0);
    EXPECT_EQ(reader.take(100), std::string(100, 'x'));
    reader.leave();

    EXPECT_EQ(result.get(), 1);
    EXPECT_THAT(m_syslog.texts(),
                ElementsAre(MatchesRegex("error SupervisorFifoWrite: [0-9]+ bytes written. Input was 1000000 bytes. "
                                         "Something went wrong \\(errno 0\\).")));
}

/// Descriptors of this process that are open at a place.
std::ptrdiff_t descriptorsAt(const std::string& place)
{
    struct stat searched {};
    stat(place.c_str(), &searched);
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::count_if(begin(all), end(all), [&searched](const auto& descriptor) {
        struct stat status {};
        return stat(descriptor.path().c_str(), &status) == 0 && status.st_dev == searched.st_dev &&
               status.st_ino == searched.st_ino;
    });
}

/// A writer that has filled the pipe, so that all others wait.
class FullPipe {
public:
    explicit FullPipe(const std::string& place) : m_descriptor(open(place.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK))
    {
        const std::string page(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), 'f');
        while (write(m_descriptor, page.data(), page.size()) > 0) {
        }
    }
    ~FullPipe() { close(m_descriptor); }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

private:
    int m_descriptor;
};

TEST_F(SupervisorFifoTest, ReaderThatGoesAwayBeforeAnythingIsWrittenIsAnErrorAndNoSignal)
{
    makeFifo();
    Reader reader(place());
    const FullPipe full(place());
    auto result = std::async(std::launch::async, [] {
        const std::int32_t status = writeText("hello");
        EXPECT_FALSE(isPipeSignalPending());
        return status;
    });

    const auto until = std::chrono::steady_clock::now() + testkit::generousBound;
    while (descriptorsAt(place()) < 3 && std::chrono::steady_clock::now() < until) {
        std::this_thread::yield(); // until the pipe is open
    }
    reader.leave();

    EXPECT_EQ(result.get(), 1);
    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: -1 bytes written. Input was 5 bytes. "
                                              "Something went wrong (errno 32)."));
}

TEST_F(SupervisorFifoTest, SizeBeyondAllMemoryIsAnError)
{
    makeFifo();
    const Reader reader(place());

    EXPECT_EQ(SupervisorFifoWrite(SIZE_MAX, "hello"), 1); // as a signed number, what a failing write returns

    EXPECT_THAT(m_syslog.texts(),
                ElementsAre(MatchesRegex("error SupervisorFifoWrite: -1 bytes written. Input was -1 bytes. "
                                         "Something went wrong \\(errno [1-9][0-9]*\\).")));
}

/// Lets no file grow beyond a size.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size)
    {
        getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit{size, m_previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_previous{};
    void (*m_handler)(int);
};

TEST_F(SupervisorFifoTest, ShortWriteIsNotCompleted)
{
    m_node.writeBoardFile("/tmp/SupervisorFifo", "");

    {
        const FileSizeLimit limit(3);
        EXPECT_EQ(writeText("hello"), 1);
    }

    EXPECT_EQ(m_node.readBoardFile("/tmp/SupervisorFifo"), "hel");
    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: 3 bytes written. Input was 5 bytes. "
                                              "Something went wrong (errno 0)."));
}

TEST_F(SupervisorFifoTest, FailingWriteIsAnError)
{
    m_node.writeBoardFile("/tmp/SupervisorFifo", "");

    {
        const FileSizeLimit limit(0);
        EXPECT_EQ(writeText("hello"), 1);
    }

    EXPECT_THAT(m_syslog.texts(), ElementsAre("error SupervisorFifoWrite: -1 bytes written. Input was 5 bytes. "
                                              "Something went wrong (errno 27)."));
}

TEST_F(SupervisorFifoTest, SignalThatWasPendingBeforeStays)
{
    makeFifo();
    const Reader reader(place());
    sigset_t pipe;
    sigset_t previous;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, &previous);
    pthread_kill(pthread_self(), SIGPIPE);

    EXPECT_EQ(writeText("hello"), 0);

    EXPECT_TRUE(isPipeSignalPending());
    int taken = 0;
    sigwait(&pipe, &taken);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

TEST_F(SupervisorFifoTest, FunctionIsCalledFromC)
{
    makeFifo();
    const Reader reader(place());

    EXPECT_EQ(writeSupervisorFifoInC("from C", 6), 0);

    EXPECT_EQ(reader.take(100), "from C");
}

} // namespace
} // namespace dorn::test
