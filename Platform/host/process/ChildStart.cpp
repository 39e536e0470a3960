// SPDX-License-Identifier: MIT
#include "process/ChildStart.hpp"

#include "port/Descriptor.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Texts in the form that exec takes.
class TextVector {
public:
    explicit TextVector(std::vector<std::string> texts) : m_texts(std::move(texts))
    {
        for (std::string& text : m_texts) {
            m_pointers.push_back(text.data());
        }
        m_pointers.push_back(nullptr);
    }
    char* const* get() const { return m_pointers.data(); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_pointers;
};

/// What the child needs between fork and exec, made before: there it may do system calls only, as other threads may
/// have held any lock.
struct Preparation {
    const char* program;
    char* const* arguments;
    char* const* environment;
    int output;
    int error;
    bool hasOwnGroup;
    int failure; ///< tells the parent why it could not be started
    pid_t parent;
};

[[noreturn]] void becomeProgram(const Preparation& made)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != made.parent) {
        _exit(127);
    }
    if (made.hasOwnGroup) {
        setpgid(0, 0);
    }
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = open("/dev/null", O_RDONLY);
    if (dup2(input, STDIN_FILENO) >= 0 && dup2(made.output, STDOUT_FILENO) >= 0 &&
        dup2(made.error, STDERR_FILENO) >= 0) {
        if (input > STDERR_FILENO) {
            close(input);
        }
        execve(made.program, made.arguments, made.environment);
    }
    const int reason = errno;
    [[maybe_unused]] const ssize_t written = write(made.failure, &reason, sizeof reason);
    _exit(127);
}

[[noreturn]] void fail(int reason, const std::string& what)
{
    throw std::system_error(reason, std::generic_category(), what);
}

} // namespace

std::vector<std::string> ownEnvironment()
{
    std::vector<std::string> texts;
    for (char** entry = environ; *entry; ++entry) {
        texts.emplace_back(*entry);
    }
    return texts;
}

pid_t startChild(const ChildStart& start)
{
    std::vector<std::string> commandLine{start.program};
    commandLine.insert(commandLine.end(), start.arguments.begin(), start.arguments.end());
    const TextVector arguments(std::move(commandLine));
    const TextVector environment(start.environment);
    std::array<int, 2> failure{};
    if (pipe2(failure.data(), O_CLOEXEC) != 0) {
        fail(errno, "pipe");
    }
    const Descriptor toRead(failure[0]);
    Descriptor toWrite(failure[1]);
    const Preparation made{start.program.c_str(), arguments.get(),   environment.get(), start.output,
                           start.error,           start.hasOwnGroup, toWrite.get(),     getpid()};
    const pid_t pid = fork();
    if (pid == 0) {
        becomeProgram(made);
    }
    if (pid < 0) {
        fail(errno, "fork");
    }
    toWrite.reset();
    int reason = 0;
    if (read(toRead.get(), &reason, sizeof reason) == static_cast<ssize_t>(sizeof reason)) {
        waitpid(pid, nullptr, 0);
        fail(reason, start.program);
    }
    return pid;
}

} // namespace dorn::host
