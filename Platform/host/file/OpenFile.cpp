// SPDX-License-Identifier: MIT
#include "file/OpenFile.hpp"

#include "port/FilePort.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace dorn::host {

int openFlags(const char* mode)
{
    if (!mode || !*mode) {
        return -EINVAL;
    }
    const std::string_view options = mode + 1;
    const auto has = [options](char option) { return options.find(option) != std::string_view::npos; };
    const std::string_view known = *mode == 'w' ? "+bxl" : "+b";
    const bool isRepeated = std::any_of(options.begin(), options.end(), [options](char option) {
        return options.find(option) != options.rfind(option);
    });
    if (options.find_first_not_of(known) != std::string_view::npos || isRepeated) {
        return -EINVAL;
    }
    const int reading = has('+') ? O_RDWR : O_RDONLY;
    const int writing = has('+') ? O_RDWR : O_WRONLY;
    switch (*mode) {
    case 'r':
        return reading;
    case 'w':
        return writing | O_CREAT | O_TRUNC | (has('x') ? O_EXCL : 0) | (has('l') ? O_NOFOLLOW : 0);
    case 'a':
        return writing | O_CREAT | O_APPEND;
    default:
        return -EINVAL;
    }
}

int OpenFile::close()
{
    const std::lock_guard lock(m_mutex);
    return ::close(m_descriptor.release()) == 0 || errno == EINTR ? 0 : errno;
}

ssize_t OpenFile::readDirectly(char* to, std::size_t size)
{
    ssize_t count = 0;
    do {
        count = ::read(m_descriptor.get(), to, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

bool OpenFile::fill()
{
    const ssize_t count = readDirectly(m_buffer.data(), m_buffer.size());
    m_begin = 0;
    m_end = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count >= 0;
}

bool OpenFile::forgetBuffer()
{
    const auto ahead = static_cast<off_t>(m_end - m_begin);
    m_begin = m_end = 0;
    return ahead == 0 || lseek(m_descriptor.get(), -ahead, SEEK_CUR) >= 0;
}

std::size_t OpenFile::takeBuffered(char* to, std::size_t size)
{
    const std::size_t count = std::min(size, m_end - m_begin);
    std::memcpy(to, m_buffer.data() + m_begin, count);
    m_begin += count;
    return count;
}

ssize_t OpenFile::readSome(char* to, std::size_t size)
{
    if (m_begin == m_end && size >= m_buffer.size()) {
        return readDirectly(to, size);
    }
    if (m_begin == m_end && !fill()) {
        return -1;
    }
    return static_cast<ssize_t>(takeBuffered(to, size));
}

ssize_t OpenFile::read(char* to, std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = readSome(to + done, size - done);
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

ssize_t OpenFile::readLine(char* to, std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    std::size_t done = 0;
    while (done < size && (done == 0 || to[done - 1] != '\n')) {
        if (m_begin == m_end && !fill()) {
            return -1;
        }
        if (m_begin == m_end) {
            break;
        }
        const char* const begin = m_buffer.data() + m_begin;
        const void* const feed = std::memchr(begin, '\n', m_end - m_begin);
        const std::size_t upTo = feed ? static_cast<std::size_t>(static_cast<const char*>(feed) - begin) + 1 : size;
        done += takeBuffered(to + done, std::min(upTo, size - done));
    }
    return static_cast<ssize_t>(done);
}

ssize_t OpenFile::write(const char* from, std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    if (!forgetBuffer()) {
        return -1;
    }
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = FilePort::get().write(m_descriptor.get(), from + done, size - done);
        if (count == -EINTR) {
            continue;
        }
        if (count <= 0) {
            errno = count < 0 ? static_cast<int>(-count) : ENOSPC;
            return done == 0 ? -1 : static_cast<ssize_t>(done);
        }
        done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

off_t OpenFile::size()
{
    const std::lock_guard lock(m_mutex);
    const off_t position = lseek(m_descriptor.get(), 0, SEEK_CUR);
    const off_t end = position < 0 ? -1 : lseek(m_descriptor.get(), 0, SEEK_END);
    return end < 0 || lseek(m_descriptor.get(), position, SEEK_SET) < 0 ? -1 : end;
}

off_t OpenFile::seek(off_t offset, int whence)
{
    const std::lock_guard lock(m_mutex);
    const auto ahead = static_cast<off_t>(m_end - m_begin);
    const off_t position = lseek(m_descriptor.get(), whence == SEEK_CUR ? offset - ahead : offset, whence);
    if (position >= 0) {
        m_begin = m_end = 0;
    }
    return position;
}

off_t OpenFile::position()
{
    const std::lock_guard lock(m_mutex);
    const off_t position = lseek(m_descriptor.get(), 0, SEEK_CUR);
    return position < 0 ? -1 : position - static_cast<off_t>(m_end - m_begin);
}

} // namespace dorn::host
