// SPDX-License-Identifier: MIT
#include "SupervisorFifo.h"

#include "AaFile.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

namespace {

constexpr const char* tag = "SupervisorFifoWrite";
constexpr const char* fifoPath = "/tmp/SupervisorFifo";
constexpr std::int32_t written = 0;
constexpr std::int32_t failed = 1;

/// The pipe, closed with its owner.
class Fifo {
public:
    /// Waits for a reader.
    explicit Fifo(const char* place) : m_descriptor(open(place, O_WRONLY | O_CLOEXEC)) {}
    ~Fifo()
    {
        if (m_descriptor >= 0) {
            close(m_descriptor);
        }
    }
    Fifo(const Fifo&) = delete;
    Fifo& operator=(const Fifo&) = delete;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Keeps the signal of a pipe without reader from this thread; the call's `errno` tells as much.
class NoPipeSignal {
public:
    NoPipeSignal()
    {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_previous);
    }
    ~NoPipeSignal()
    {
        if (!m_wasPending) { // the one that is pending now is ours
            constexpr timespec noTime{};
            while (sigtimedwait(&m_pipe, nullptr, &noTime) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

private:
    sigset_t m_pipe{};
    sigset_t m_previous{};
    bool m_wasPending;
};

/// Whether there is nothing at the place. One that cannot be looked at is left to the opening, which says why.
bool isMissing(const char* place)
{
    struct stat status {};
    return stat(place, &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

std::int32_t writeOnce(int descriptor, const void* payload, std::size_t size)
{
    errno = 0; // a write that stops half-way leaves it
    const ssize_t count = write(descriptor, payload, size);
    if (count >= 0 && static_cast<std::size_t>(count) == size) {
        syslog(LOG_INFO, "%s: %zd bytes written successfully.", tag, count);
        return written;
    }
    syslog(LOG_ERR, "%s: %zd bytes written. Input was %zd bytes. Something went wrong (errno %d).", tag, count,
           static_cast<ssize_t>(size), errno);
    return failed;
}

} // namespace

int32_t SupervisorFifoWrite(size_t size, const void* payload)
{
    if (!payload) {
        syslog(LOG_ERR, "%s: Payload pointer is NULL.", tag);
        return failed;
    }
    std::array<char, PATH_MAX> place{};
    if (AaFileGetBoardPath(fifoPath, place.data(), place.size()) != 0 || isMissing(place.data())) {
        syslog(LOG_INFO, "%s: %s is missing", tag, fifoPath);
        return failed;
    }
    const Fifo fifo(place.data());
    if (fifo.descriptor() < 0) {
        syslog(LOG_ERR, "%s: Fifo open failed. errno %d", tag, errno);
        return failed;
    }
    const NoPipeSignal noSignal;
    return writeOnce(fifo.descriptor(), payload, size);
}
