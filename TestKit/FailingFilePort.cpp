// SPDX-License-Identifier: MIT
#include "FailingFilePort.hpp"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace dorn::testkit {

FailingFilePort::FailingFilePort(FileOperation operation, unsigned nth, int error)
    : m_operation(operation), m_nth(nth), m_error(error)
{
}

unsigned FailingFilePort::calls(FileOperation operation) const
{
    return m_calls[static_cast<std::size_t>(operation)].load();
}

bool FailingFilePort::fails(FileOperation operation)
{
    const unsigned number = m_calls[static_cast<std::size_t>(operation)].fetch_add(1) + 1;
    return operation == m_operation && number == m_nth;
}

int FailingFilePort::open(int directory, const char* path, int flags, mode_t mode)
{
    return fails(FileOperation::Open) ? -m_error : m_files.open(directory, path, flags, mode);
}

ssize_t FailingFilePort::write(int descriptor, const void* data, std::size_t size)
{
    return fails(FileOperation::Write) ? -m_error : m_files.write(descriptor, data, size);
}

int FailingFilePort::reserve(int descriptor, off_t size)
{
    return fails(FileOperation::Reserve) ? -m_error : m_files.reserve(descriptor, size);
}

int FailingFilePort::truncate(int descriptor, off_t size)
{
    return fails(FileOperation::Truncate) ? -m_error : m_files.truncate(descriptor, size);
}

int FailingFilePort::sync(int descriptor)
{
    return fails(FileOperation::Sync) ? -m_error : m_files.sync(descriptor);
}

int FailingFilePort::rename(int fromDirectory, const char* from, int toDirectory, const char* to)
{
    return fails(FileOperation::Rename) ? -m_error : m_files.rename(fromDirectory, from, toDirectory, to);
}

int FailingFilePort::renameNew(int fromDirectory, const char* from, int toDirectory, const char* to)
{
    return fails(FileOperation::Rename) ? -m_error : m_files.renameNew(fromDirectory, from, toDirectory, to);
}

int FailingFilePort::remove(int directory, const char* path)
{
    return fails(FileOperation::Remove) ? -m_error : m_files.remove(directory, path);
}

int FailingFilePort::makeDirectory(int directory, const char* path, mode_t mode)
{
    return fails(FileOperation::MakeDirectory) ? -m_error : m_files.makeDirectory(directory, path, mode);
}

std::uint64_t FullDisk::take(std::uint64_t wanted, bool isPartEnough)
{
    std::uint64_t room = m_room.load();
    std::uint64_t taken = 0;
    do {
        taken = wanted <= room ? wanted : (isPartEnough ? room : 0);
    } while (!m_room.compare_exchange_weak(room, room - taken));
    return taken;
}

ssize_t FullDisk::write(int descriptor, const void* data, std::size_t size)
{
    const std::uint64_t taken = take(size, true);
    return taken == 0 && size != 0 ? -ENOSPC : PosixFilePort::write(descriptor, data, static_cast<std::size_t>(taken));
}

int FullDisk::reserve(int descriptor, off_t size)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        return -errno;
    }
    const auto more = static_cast<std::uint64_t>(std::max<off_t>(size - status.st_size, 0));
    return take(more, false) == more ? PosixFilePort::reserve(descriptor, size) : -ENOSPC;
}

} // namespace dorn::testkit
