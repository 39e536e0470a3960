// SPDX-License-Identifier: MIT
#include "Process.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace dorn::testkit {

struct Process::Pipe {
    Pipe()
    {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeEnd(std::size_t end)
    {
        if (ends[end] >= 0) {
            close(ends[end]);
            ends[end] = -1;
        }
    }
    int release(std::size_t end) { return std::exchange(ends[end], -1); }

    std::array<int, 2> ends{-1, -1}; ///< to read, to write
};

namespace {

/// In the child, between fork and exec: system calls only, as other threads may have held any lock.
[[noreturn]] void becomeProgram(const char* program, char* const* argv, int output, int error, int failure,
                                pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(127);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = open("/dev/null", O_RDONLY);
    if (dup2(input, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0 && dup2(error, STDERR_FILENO) >= 0) {
        execv(program, argv);
    }
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = write(failure, &reason, sizeof reason);
    _exit(127);
}

} // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments)
{
    std::vector<std::string> commandLine{program};
    commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    std::transform(commandLine.begin(), commandLine.end(), std::back_inserter(argv),
                   [](auto& text) { return text.data(); });
    argv.push_back(nullptr);

    Pipe output;
    Pipe error;
    Pipe failure;
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        becomeProgram(program.c_str(), argv.data(), output.ends[1], error.ends[1], failure.ends[1], parent);
    }
    if (m_pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    output.closeEnd(1);
    error.closeEnd(1);
    failure.closeEnd(1);
    int reason = 0;
    if (read(failure.ends[0], &reason, sizeof reason) == static_cast<ssize_t>(sizeof reason)) {
        waitpid(m_pid, nullptr, 0);
        throw std::system_error(reason, std::generic_category(), program);
    }
    m_readerStop = eventfd(0, EFD_CLOEXEC);
    m_reader = std::thread([this, out = output.release(0), err = error.release(0)] { readOutput(out, err); });
    m_reaper = std::thread([this] { awaitEnd(); });
}

Process::~Process()
{
    signal(SIGKILL);
    m_reaper.join();
    eventfd_write(m_readerStop, 1); // a grandchild may hold the pipes open
    m_reader.join();
    close(m_readerStop);
}

void Process::awaitEnd()
{
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    // The process id stays taken until here, so that signal() cannot hit another process.
    const std::lock_guard lock(m_mutex);
    int status = 0;
    while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    m_changed.notify_all();
}

void Process::readOutput(int output, int error)
{
    std::array<pollfd, 3> streams{pollfd{output, POLLIN, 0}, pollfd{error, POLLIN, 0}, pollfd{m_readerStop, POLLIN, 0}};
    std::array<char, 4096> part; // NOLINT: filled by the call
    while ((streams[0].fd >= 0 || streams[1].fd >= 0) && streams[2].revents == 0) {
        poll(streams.data(), streams.size(), -1);
        for (std::size_t index = 0; index < m_texts.size(); ++index) {
            pollfd& stream = streams[index];
            if (stream.fd < 0 || stream.revents == 0) {
                continue;
            }
            const ssize_t size = read(stream.fd, part.data(), part.size());
            if (size > 0) {
                append(index, part.data(), static_cast<std::size_t>(size));
            } else if (size == 0 || errno != EINTR) {
                close(std::exchange(stream.fd, -1));
            }
        }
    }
    for (std::size_t index = 0; index < m_texts.size(); ++index) {
        if (streams[index].fd >= 0) {
            close(streams[index].fd);
        }
    }
    const std::lock_guard lock(m_mutex);
    m_isOutputComplete = true;
    m_changed.notify_all();
}

void Process::append(std::size_t stream, const char* text, std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    m_texts[stream].append(text, size);
    m_changed.notify_all();
}

bool Process::isRunning() const
{
    const std::lock_guard lock(m_mutex);
    return !m_status;
}

void Process::signal(int number)
{
    const std::lock_guard lock(m_mutex);
    if (!m_status) {
        kill(m_pid, number);
    }
}

int Process::waitForEnd(Bound bound)
{
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, bound, [this] { return m_status && m_isOutputComplete; })) {
        throw std::runtime_error("process " + std::to_string(m_pid) + " still runs");
    }
    return *m_status;
}

std::string Process::standardOutput() const
{
    const std::lock_guard lock(m_mutex);
    return m_texts[0];
}

std::string Process::standardError() const
{
    const std::lock_guard lock(m_mutex);
    return m_texts[1];
}

bool Process::waitForOutput(const std::string& text, Bound bound) const
{
    std::unique_lock lock(m_mutex);
    const auto isThere = [&] { return m_texts[0].find(text) != std::string::npos; };
    return m_changed.wait_for(lock, bound, [&] { return isThere() || m_isOutputComplete; }) && isThere();
}

} // namespace dorn::testkit
