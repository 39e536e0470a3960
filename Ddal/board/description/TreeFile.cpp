// SPDX-License-Identifier: MIT
#include "description/TreeFile.hpp"

#include "port/Descriptor.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace dorn::board {
namespace {

[[noreturn]] void failToRead(int error)
{
    throw TreeError(std::string("cannot be read: ") + std::strerror(error));
}

/// Opens a file without waiting for whoever else would have to open it.
host::Descriptor openFile(const std::string& path)
{
    host::Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0) {
        failToRead(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw TreeError("cannot be read: not a file");
    }
    return descriptor;
}

} // namespace

TreeBytes readTreeFile(const std::string& path, std::size_t largest)
{
    const host::Descriptor descriptor = openFile(path);
    TreeBytes content;
    std::array<std::byte, 4096> part; // NOLINT: filled before it is read
    for (;;) {
        const ssize_t count = ::read(descriptor.get(), part.data(), part.size());
        if (count < 0 && errno != EINTR) {
            failToRead(errno);
        }
        if (count == 0) {
            return content;
        }
        content.insert(content.end(), part.begin(), part.begin() + std::max<ssize_t>(count, 0));
        if (content.size() > largest) {
            throw TreeError("cannot be read: more than " + std::to_string(largest) + " bytes");
        }
    }
}

} // namespace dorn::board
