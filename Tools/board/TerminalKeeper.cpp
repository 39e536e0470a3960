// SPDX-License-Identifier: MIT
#include "board/TerminalKeeper.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

/// Gives up a sequence that was cut off, then: plain, cursor visible, the terminal's own page.
constexpr std::string_view giveBackSequence = "\030\033[0m\033[?25h\033[?1049l";
constexpr int patience = 500; // milliseconds for a terminal that takes nothing

/// In the other process, made by fork alone: system calls only.
[[noreturn]] void keep(int life, int output, bool hasKeys, const termios& before)
{
    setpgid(0, 0); // what ends the others by their group passes it by
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) {
        if (descriptor != life && descriptor != output) {
            close(descriptor);
        }
    }
    char byte = 0;
    ssize_t size = -1;
    while ((size = read(life, &byte, 1)) < 0 && errno == EINTR) {
    }
    if (size == 0) {
        giveTerminalBack(output, hasKeys, before);
    }
    _exit(0);
}

} // namespace

void giveTerminalBack(int output, bool hasKeys, const termios& before)
{
    tcflush(output, TCOFLUSH); // what a slow terminal has not taken yet
    std::string_view rest = giveBackSequence;
    while (!rest.empty()) {
        pollfd entry{output, POLLOUT, 0};
        const ssize_t count = poll(&entry, 1, patience) > 0 ? write(output, rest.data(), rest.size()) : -1;
        if (count < 0 && errno != EINTR) {
            break;
        }
        rest.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (hasKeys) {
        tcsetattr(output, TCSANOW, &before);
    }
}

TerminalKeeper::TerminalKeeper(int output, bool hasKeys, const termios& before)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return;
    }
    const host::Descriptor toRead(ends[0]);
    m_life.reset(ends[1]);
    m_pid = fork();
    if (m_pid == 0) {
        close(ends[1]);
        keep(ends[0], output, hasKeys, before);
    }
}

TerminalKeeper::~TerminalKeeper()
{
    if (m_pid > 0) {
        [[maybe_unused]] const ssize_t written = write(m_life.get(), "q", 1);
        waitpid(m_pid, nullptr, 0);
    }
}

} // namespace dorn::tool
