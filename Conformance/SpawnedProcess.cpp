// SPDX-License-Identifier: MIT
#include "SpawnedProcess.hpp"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace dorn::conformance {
namespace {

[[noreturn]] void fail(int error, const char* what)
{
    throw std::system_error(error, std::generic_category(), what);
}

std::string ownProgram()
{
    std::array<char, PATH_MAX> path{};
    if (readlink("/proc/self/exe", path.data(), path.size() - 1) < 0) {
        fail(errno, "/proc/self/exe");
    }
    return path.data();
}

class SpawnSettings {
public:
    SpawnSettings()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

} // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_number, other.m_number);
    return *this;
}

int Descriptor::release()
{
    return std::exchange(m_number, -1);
}

void Descriptor::close()
{
    if (m_number >= 0) {
        ::close(release());
    }
}

Pipe::Pipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail(errno, "pipe");
    }
    readEnd = Descriptor(ends[0]);
    writeEnd = Descriptor(ends[1]);
}

pid_t spawnSelf(const std::vector<std::string>& arguments, const std::vector<Inheritance>& descriptors, bool isLeader)
{
    const std::string program = ownProgram();
    std::vector<char*> pointers{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);

    SpawnSettings settings;
    for (const Inheritance& descriptor : descriptors) {
        posix_spawn_file_actions_adddup2(&settings.actions, descriptor.own, descriptor.childs);
    }
    if (isLeader) {
        posix_spawnattr_setflags(&settings.attributes, POSIX_SPAWN_SETPGROUP);
    }
    pid_t child = -1;
    const int error =
        posix_spawn(&child, program.c_str(), &settings.actions, &settings.attributes, pointers.data(), environ);
    if (error != 0) {
        fail(error, program.c_str());
    }
    return child;
}

void endWithParent()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

int waitForChild(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

} // namespace dorn::conformance
