// SPDX-License-Identifier: MIT
#include "service/Child.hpp"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dorn::benchmarks {
namespace {

/// Standard output to nowhere. Made once, so that starting a child costs the same for all.
const posix_spawn_file_actions_t* quietly()
{
    static const posix_spawn_file_actions_t actions = [] {
        posix_spawn_file_actions_t made;
        posix_spawn_file_actions_init(&made);
        posix_spawn_file_actions_addopen(&made, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        return made;
    }();
    return &actions;
}

} // namespace

Child::Child(const std::string& program)
{
    std::string name = program;
    char* arguments[] = {name.data(), nullptr};
    if (const int error = posix_spawn(&m_pid, program.c_str(), quietly(), nullptr, arguments, environ)) {
        throw std::system_error(error, std::generic_category(), program);
    }
}

Child::~Child()
{
    if (m_pid > 0) {
        kill(m_pid, SIGTERM);
        waitForEnd();
    }
}

void Child::waitForEnd()
{
    while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
}

} // namespace dorn::benchmarks
