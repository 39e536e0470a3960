// SPDX-License-Identifier: MIT
#include "log/RotatingFile.hpp"

#include "node/RunDirectory.hpp"
#include "port/FilePort.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace dorn::host {
namespace {

Descriptor openForAppending(const std::string& path)
{
    return Descriptor(FilePort::get().open(AT_FDCWD, path.c_str(), O_WRONLY | O_APPEND | O_CREAT, 0644));
}

} // namespace

RotatingFile::RotatingFile(const std::string& path, const RotationLimits& limits)
    : m_path(path), m_limits(limits), m_file(openForAppending(path)), m_drops(path)
{
    if (!m_file) {
        throw EnvironmentError("log file '" + path + "' cannot be opened: " + std::strerror(-m_file.get()));
    }
}

int RotatingFile::append(std::string_view data)
{
    while (!data.empty()) {
        const ssize_t written = FilePort::get().write(m_file.get(), data.data(), data.size());
        if (written == -EINTR) {
            continue;
        }
        if (written <= 0) {
            return written == 0 ? ENOSPC : static_cast<int>(-written);
        }
        m_isMidLine = true;
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    m_isMidLine = false;
    return 0;
}

void RotatingFile::write(std::string_view line)
{
    int error = m_isMidLine ? append("\n") : 0;
    if (error == 0) {
        error = append(line);
    }
    if (error != 0) {
        m_drops.dropped(std::strerror(error));
        return;
    }
    m_drops.written();
    rotateIfFull();
}

std::string RotatingFile::olderPath(unsigned number) const
{
    return number == 0 ? m_path : m_path + "." + std::to_string(number);
}

bool RotatingFile::isCurrent() const
{
    struct stat own {};
    struct stat named {};
    return fstat(m_file.get(), &own) == 0 && stat(m_path.c_str(), &named) == 0 && own.st_dev == named.st_dev &&
           own.st_ino == named.st_ino;
}

void RotatingFile::rotateIfFull()
{
    const off_t end = lseek(m_file.get(), 0, SEEK_CUR); // where the line ends, whoever wrote before it
    if (end < 0 || static_cast<std::size_t>(end) < m_limits.size) {
        return;
    }
    if (flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
        return; // another process is at it; it is looked at again after the next line
    }
    if (isCurrent()) {
        rotate();
    }
    // Whoever renamed the file: the next line belongs into the new one. Without one the old file grows on.
    if (Descriptor next = openForAppending(m_path)) {
        m_file = std::move(next);
    } else {
        flock(m_file.get(), LOCK_UN);
    }
}

void RotatingFile::rotate()
{
    FilePort& files = FilePort::get();
    if (m_limits.older == 0) {
        files.remove(AT_FDCWD, m_path.c_str());
        return;
    }
    for (unsigned number = m_limits.older; number > 0; --number) {
        files.rename(AT_FDCWD, olderPath(number - 1).c_str(), AT_FDCWD, olderPath(number).c_str());
    }
}

} // namespace dorn::host
