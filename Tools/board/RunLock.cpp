// SPDX-License-Identifier: MIT
#include "board/RunLock.hpp"

#include "Outcome.hpp"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

/// The process id in the file; nothing when there is none.
std::optional<pid_t> readHolder(int file)
{
    std::array<char, 32> text{};
    const ssize_t size = pread(file, text.data(), text.size(), 0);
    pid_t holder = 0;
    if (size <= 0 || std::from_chars(text.data(), text.data() + size, holder).ec != std::errc()) {
        return std::nullopt;
    }
    return holder;
}

} // namespace

RunLock::RunLock(const host::RunDirectory& node)
    : m_file(openat(node.descriptor(), "board-run", O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
{
    if (!m_file) {
        throw Failure("'" + node.path() + "/board-run' cannot be opened: " + std::strerror(errno));
    }
    const bool isTaken = flock(m_file.get(), LOCK_EX | LOCK_NB) != 0;
    const std::optional<pid_t> holder = readHolder(m_file.get());
    if (isTaken) {
        throw Failure("the services of this node are run already" +
                      (holder ? ", by process " + std::to_string(*holder) : std::string()) + ", in '" + node.path() +
                      "' (DORN_RUN_DIR and DORN_NID choose another node)");
    }
    m_deadHolder = holder;
    const std::string own = std::to_string(getpid()) + "\n";
    if (ftruncate(m_file.get(), 0) != 0 ||
        pwrite(m_file.get(), own.data(), own.size(), 0) != static_cast<ssize_t>(own.size())) {
        throw Failure("'" + node.path() + "/board-run' cannot be written: " + std::strerror(errno));
    }
}

RunLock::~RunLock()
{
    [[maybe_unused]] const int result = ftruncate(m_file.get(), 0);
}

} // namespace dorn::tool
