// SPDX-License-Identifier: MIT
#include "ChildProcess.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dorn::host::test {
namespace {

constexpr int generousMilliseconds = 20'000;

bool readWord(int descriptor, int milliseconds)
{
    pollfd entry{descriptor, POLLIN, 0};
    char word = 0;
    return poll(&entry, 1, milliseconds) == 1 && read(descriptor, &word, 1) == 1;
}

void writeWord(int descriptor)
{
    if (write(descriptor, "!", 1) != 1) {
        std::perror("a process of the test has gone");
    }
}

[[noreturn]] void runChild(const std::function<void(ChildProcess::Parent&)>& work, int in, int out)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
        ChildProcess::Parent parent(in, out);
        work(parent);
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
}

} // namespace

void ChildProcess::Parent::tell()
{
    writeWord(m_out);
}

bool ChildProcess::Parent::await()
{
    return readWord(m_in, -1);
}

ChildProcess::ChildProcess(const std::function<void(Parent&)>& work)
{
    std::array<int, 2> down{};
    std::array<int, 2> up{};
    if (pipe(down.data()) != 0 || pipe(up.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    std::fflush(nullptr);
    m_pid = fork();
    if (m_pid == 0) {
        close(down[1]);
        close(up[0]);
        runChild(work, down[0], up[1]);
    }
    close(down[0]);
    close(up[1]);
    m_in = up[0];
    m_out = down[1];
    if (m_pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

ChildProcess::~ChildProcess()
{
    kill();
    close(m_in);
    close(m_out);
}

void ChildProcess::tell()
{
    writeWord(m_out);
}

bool ChildProcess::await()
{
    return readWord(m_in, generousMilliseconds);
}

void ChildProcess::kill()
{
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

bool ChildProcess::hasSucceeded()
{
    int status = -1;
    if (m_pid <= 0 || waitpid(m_pid, &status, 0) != m_pid) {
        return false;
    }
    m_pid = -1;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace dorn::host::test
