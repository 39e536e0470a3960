// SPDX-License-Identifier: MIT
#include "snapshot/OwnVerb.hpp"

#include "Outcome.hpp"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::chrono::milliseconds lookOut{5}; // how often it is looked whether a process has ended

/// Nothing to read, and the two files to write to.
class Redirections {
public:
    Redirections(int output, int error)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, error, STDERR_FILENO);
    }
    ~Redirections() { posix_spawn_file_actions_destroy(&m_actions); }
    Redirections(const Redirections&) = delete;
    Redirections& operator=(const Redirections&) = delete;

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

} // namespace

OwnVerb::OwnVerb(std::vector<std::string> arguments)
    : m_arguments(std::move(arguments)),
      m_answer(memfd_create("answer", MFD_CLOEXEC)),
      m_remarks(memfd_create("remarks", MFD_CLOEXEC))
{
    std::vector<char*> argv{const_cast<char*>("dorn")}; // NOLINT: not written to
    for (std::string& argument : m_arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    int error = m_answer && m_remarks ? 0 : errno;
    if (error == 0) {
        const Redirections redirections(m_answer.get(), m_remarks.get());
        error = posix_spawn(&m_pid, "/proc/self/exe", redirections.get(), nullptr, argv.data(), environ);
    }
    if (error != 0) {
        throw Failure("'" + command() + "' cannot be started: " + std::strerror(error));
    }
}

OwnVerb::~OwnVerb()
{
    if (m_pid > 0) {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
}

bool OwnVerb::awaitEnd(host::Deadline until)
{
    host::Clock& clock = host::Clock::get();
    int status = 0;
    while (m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == 0) {
        if (clock.monotonic() >= until) {
            return false;
        }
        std::atomic<std::uint32_t> nothing{0};
        clock.waitWhile(nothing, 0, clock.monotonic() + lookOut, false);
    }
    if (m_pid > 0) {
        m_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        m_pid = -1;
    }
    return true;
}

std::string OwnVerb::command() const
{
    std::string text = "dorn";
    for (const std::string& argument : m_arguments) {
        text += " " + argument;
    }
    return text;
}

std::string OwnVerb::contentOf(const host::Descriptor& file)
{
    struct stat status {};
    fstat(file.get(), &status);
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t count = pread(file.get(), content.data(), content.size(), 0);
    content.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return content;
}

} // namespace dorn::tool
