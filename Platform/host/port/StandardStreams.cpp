// SPDX-License-Identifier: MIT
#include "port/StandardStreams.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Keeps the SIGPIPE of a write away from the program. The kernel sends it to the writing thread.
class PipeSignalBlocked {
public:
    PipeSignalBlocked()
    {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_previous);
    }
    ~PipeSignalBlocked()
    {
        const int error = errno;
        if (sigismember(&m_previous, SIGPIPE) == 0) {
            const timespec atOnce{};
            if (error == EPIPE) {
                sigtimedwait(&m_pipe, nullptr, &atOnce);
            }
            pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
        }
        errno = error;
    }
    PipeSignalBlocked(const PipeSignalBlocked&) = delete;
    PipeSignalBlocked& operator=(const PipeSignalBlocked&) = delete;

private:
    sigset_t m_pipe{};
    sigset_t m_previous{};
};

/// Files and the memory devices, such as /dev/null.
bool isAlwaysReady(const struct stat& status)
{
    constexpr unsigned memoryDevices = 1;
    return S_ISREG(status.st_mode) || (S_ISCHR(status.st_mode) && major(status.st_rdev) == memoryDevices);
}

/// Standard error as something that can be written to without waiting, while it lives.
class Outlet {
public:
    Outlet()
    {
        struct stat status {};
        m_isReady = fstat(STDERR_FILENO, &status) != 0 || isAlwaysReady(status);
        m_isSocket = !m_isReady && S_ISSOCK(status.st_mode);
        if (!m_isReady && !m_isSocket) {
            // O_NONBLOCK on descriptor 2 itself would be one for everybody who has it from the same shell.
            m_own = ::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        }
    }
    ~Outlet()
    {
        if (m_own >= 0) {
            const int error = errno;
            close(m_own);
            errno = error;
        }
    }
    Outlet(const Outlet&) = delete;
    Outlet& operator=(const Outlet&) = delete;

    ssize_t write(std::string_view text) const
    {
        if (m_isReady) {
            return ::write(STDERR_FILENO, text.data(), text.size());
        }
        if (m_isSocket) {
            return ::send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        }
        const PipeSignalBlocked untilWritten;
        return m_own >= 0 ? ::write(m_own, text.data(), text.size()) : writeWhenReady(text);
    }

    /// Waits until it takes something. @return false when the time has passed.
    bool await(Deadline until) const
    {
        const Clock& clock = Clock::get();
        return clock.monotonic() < until && Clock::get().waitDescriptor(STDERR_FILENO, POLLOUT, until);
    }

private:
    /// For what cannot be opened a second time, for want of rights, descriptors or /proc. Another process may take the
    /// room between the look and the write, which then waits for the reader.
    static ssize_t writeWhenReady(std::string_view text)
    {
        constexpr std::size_t atomicPart = 512;
        pollfd entry{STDERR_FILENO, POLLOUT, 0};
        if (poll(&entry, 1, 0) != 1) {
            errno = EAGAIN;
            return -1;
        }
        return ::write(STDERR_FILENO, text.data(), std::min(text.size(), atomicPart));
    }

    bool m_isReady = true;
    bool m_isSocket = false;
    int m_own = -1;
};

} // namespace

void openMissingStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        const int wrongWay = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        // The lowest free number is this one: those below are open.
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF && ::open("/dev/null", wrongWay) != descriptor) {
            return;
        }
    }
}

bool isStandardErrorAlwaysReady()
{
    struct stat status {};
    return fstat(STDERR_FILENO, &status) != 0 || isAlwaysReady(status);
}

std::size_t writeToReadyStandardError(std::string_view text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = ::write(STDERR_FILENO, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            break;
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    return done;
}

std::size_t writeToStandardError(std::string_view text, Nanoseconds patience)
{
    const Outlet outlet;
    std::size_t done = 0;
    Deadline until{};
    while (done < text.size()) {
        const ssize_t count = outlet.write(text.substr(done));
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
            continue;
        }
        if (errno == EINTR) {
            continue;
        }
        if (errno != EAGAIN) {
            break;
        }
        if (until == Deadline{}) {
            until = Clock::get().monotonic() + patience;
        }
        if (!outlet.await(until)) {
            errno = EAGAIN;
            break;
        }
    }
    return done;
}

} // namespace dorn::host
