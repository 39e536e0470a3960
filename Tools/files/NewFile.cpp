// SPDX-License-Identifier: MIT
#include "files/NewFile.hpp"

#include "Outcome.hpp"
#include "port/FilePort.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace dorn::tool {

using host::FilePort;

namespace {

/// Where a file is to lie: a link that bears its name stays, and leads to it.
std::string placeOf(const std::string& path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return path;
    }
    if (!S_ISREG(status.st_mode)) {
        throw Failure("'" + path + "' is no regular file, and is not replaced by one");
    }
    std::error_code error;
    const std::filesystem::path place = std::filesystem::canonical(path, error);
    return error ? path : place.string();
}

} // namespace

NewFile::NewFile(std::string path)
    : m_path(std::move(path)),
      m_place(placeOf(m_path)),
      m_unfinished(m_place + "." + std::to_string(getpid()) + ".part")
{
    const int result = FilePort::get().open(AT_FDCWD, m_unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (result < 0) {
        fail("made", -result);
    }
    m_descriptor.reset(result);
}

NewFile::~NewFile()
{
    if (m_descriptor) {
        FilePort::get().remove(AT_FDCWD, m_unfinished.c_str());
    }
}

void NewFile::write(BytesView bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = FilePort::get().write(m_descriptor.get(), bytes.data(), bytes.size());
        if (count < 0 && count != -EINTR) {
            fail("written", static_cast<int>(-count));
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count < 0 ? 0 : count));
    }
}

void NewFile::keep()
{
    if (const int result = FilePort::get().sync(m_descriptor.get()); result < 0) {
        fail("written", -result);
    }
    const int result = FilePort::get().rename(AT_FDCWD, m_unfinished.c_str(), AT_FDCWD, m_place.c_str());
    if (result < 0) {
        fail("put in its place", -result);
    }
    m_descriptor.reset();
}

void NewFile::fail(const std::string& what, int error) const
{
    throw Failure("'" + m_path + "' cannot be " + what + ": " + std::strerror(error));
}

} // namespace dorn::tool
