// SPDX-License-Identifier: MIT
#include "port/FilePort.hpp"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

template <class Result>
Result orError(Result result)
{
    return result < 0 ? static_cast<Result>(-errno) : result;
}

PosixFilePort posixFilePort;

} // namespace

constinit std::atomic<FilePort*> FilePort::s_current{&posixFilePort};

int PosixFilePort::open(int directory, const char* path, int flags, mode_t mode)
{
    return orError(::openat(directory, path, flags | O_CLOEXEC, mode));
}

ssize_t PosixFilePort::write(int descriptor, const void* data, std::size_t size)
{
    return orError(::write(descriptor, data, size));
}

int PosixFilePort::reserve(int descriptor, off_t size)
{
    return -::posix_fallocate(descriptor, 0, size);
}

int PosixFilePort::truncate(int descriptor, off_t size)
{
    return orError(::ftruncate(descriptor, size));
}

int PosixFilePort::sync(int descriptor)
{
    return orError(::fsync(descriptor));
}

int PosixFilePort::rename(int fromDirectory, const char* from, int toDirectory, const char* to)
{
    return orError(::renameat(fromDirectory, from, toDirectory, to));
}

int PosixFilePort::renameNew(int fromDirectory, const char* from, int toDirectory, const char* to)
{
    return orError(::renameat2(fromDirectory, from, toDirectory, to, RENAME_NOREPLACE));
}

int PosixFilePort::remove(int directory, const char* path)
{
    return orError(::unlinkat(directory, path, 0));
}

int PosixFilePort::makeDirectory(int directory, const char* path, mode_t mode)
{
    return orError(::mkdirat(directory, path, mode));
}

FilePortScope::FilePortScope(FilePort& port) : m_previous(FilePort::s_current.exchange(&port)) {}

FilePortScope::~FilePortScope()
{
    FilePort::s_current.store(m_previous);
}

} // namespace dorn::host
