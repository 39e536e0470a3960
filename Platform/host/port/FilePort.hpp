// SPDX-License-Identifier: MIT
/// @file FilePort.hpp
/// The one file port: everything the host platform changes in a file system goes through it.
#pragma once

#include <atomic>
#include <cstddef>
#include <sys/types.h>

namespace dorn::host {

/// Changes files and directories. A test or a tool puts another one in its place with FilePortScope.
///
/// Every operation returns what the system call of its name returns, or -`errno`. Reading needs no port.
class FilePort {
public:
    virtual ~FilePort() = default;

    /// `openat`, always with `O_CLOEXEC`.
    virtual int open(int directory, const char* path, int flags, mode_t mode) = 0;
    /// May write less than @p size bytes, as on a full file system or for a signal: then the caller writes the rest.
    virtual ssize_t write(int descriptor, const void* data, std::size_t size) = 0;
    /// Makes sure that the file has at least @p size bytes and that all of them have room (`posix_fallocate`).
    virtual int reserve(int descriptor, off_t size) = 0;
    /// Makes the file @p size bytes long; what it grows by reads as zeros and may have no room yet.
    virtual int truncate(int descriptor, off_t size) = 0;
    /// Returns when what was written, and the file's length, outlive a loss of power. A rename() outlives it only when
    /// the directory has been synchronised as well.
    virtual int sync(int descriptor) = 0;
    /// In one step, also for who reads meanwhile: @p to is the old file or the new one, never half of either.
    virtual int rename(int fromDirectory, const char* from, int toDirectory, const char* to) = 0;
    /// As rename(), but fails with `EEXIST` when @p to is there (`renameat2` with `RENAME_NOREPLACE`).
    virtual int renameNew(int fromDirectory, const char* from, int toDirectory, const char* to) = 0;
    /// Takes away the name of a file; who has it open keeps it. Directories fail with `EISDIR`.
    virtual int remove(int directory, const char* path) = 0;
    /// @p mode is lessened by the process's mask. Fails with `EEXIST` whatever it is that is there.
    virtual int makeDirectory(int directory, const char* path, mode_t mode) = 0;

    /// The port in use.
    static FilePort& get() { return *s_current.load(std::memory_order_acquire); }

private:
    friend class FilePortScope;
    static std::atomic<FilePort*> s_current;
};

/// The file systems of this machine; also the base of ports that change one operation.
class PosixFilePort : public FilePort {
public:
    int open(int directory, const char* path, int flags, mode_t mode) override;
    ssize_t write(int descriptor, const void* data, std::size_t size) override;
    int reserve(int descriptor, off_t size) override;
    int truncate(int descriptor, off_t size) override;
    int sync(int descriptor) override;
    int rename(int fromDirectory, const char* from, int toDirectory, const char* to) override;
    int renameNew(int fromDirectory, const char* from, int toDirectory, const char* to) override;
    int remove(int directory, const char* path) override;
    int makeDirectory(int directory, const char* path, mode_t mode) override;
};

/// Has another file port used as long as the scope lives.
class FilePortScope {
public:
    /// @param port outlives the scope
    explicit FilePortScope(FilePort& port);
    ~FilePortScope();
    FilePortScope(const FilePortScope&) = delete;
    FilePortScope& operator=(const FilePortScope&) = delete;

private:
    FilePort* m_previous;
};

} // namespace dorn::host
