// SPDX-License-Identifier: MIT
#include "Process.hpp"

#include "port/Descriptor.hpp"
#include "process/ChildStart.hpp"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace dorn::testkit {
namespace {

/// What a child writes, and what is read of it here.
struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
        toRead.reset(ends[0]);
        toWrite.reset(ends[1]);
    }

    host::Descriptor toRead;
    host::Descriptor toWrite;
};

/// Starts a program; one of another processor, where this one is emulated too, with the emulator.
pid_t start(const std::string& program, const std::vector<std::string>& arguments, int output, int error)
{
    try {
        return host::startChild({program, arguments, host::ownEnvironment(), output, error});
    } catch (const std::system_error& failure) {
        const std::vector<std::string> emulator{DORN_EMULATOR};
        if (failure.code().value() != ENOEXEC || emulator.empty()) {
            throw;
        }
        std::vector<std::string> words(emulator.begin() + 1, emulator.end());
        words.push_back(program);
        words.insert(words.end(), arguments.begin(), arguments.end());
        return host::startChild({emulator.front(), words, host::ownEnvironment(), output, error});
    }
}

} // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments)
{
    Pipe output;
    Pipe error;
    m_pid = start(program, arguments, output.toWrite.get(), error.toWrite.get());
    output.toWrite.reset();
    error.toWrite.reset();
    m_readerStop = eventfd(0, EFD_CLOEXEC);
    m_reader =
        std::thread([this, out = output.toRead.release(), err = error.toRead.release()] { readOutput(out, err); });
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
    {
        const std::lock_guard lock(m_mutex);
        if (m_status) {
            return;
        }
        kill(m_pid, number);
    }
    if (number == SIGSTOP) {
        siginfo_t info{};
        waitid(P_PID, static_cast<id_t>(m_pid), &info, WSTOPPED | WEXITED | WNOWAIT); // its end is left to the reaper
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
