// SPDX-License-Identifier: MIT
/// @file FailingFilePort.hpp
/// File systems that fail: one operation at a chosen moment, or a disk that fills up.
#pragma once

#include "port/FilePort.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace dorn::testkit {

/// The operations of a file port.
enum class FileOperation { Open, Write, Reserve, Truncate, Sync, Rename, Remove, MakeDirectory };
/// How many operations there are.
constexpr std::size_t fileOperationCount = 8;

/// In use as long as it lives. Passes every operation on to the file port that was in use before, but has call number
/// @p nth (from 1) of one operation fail with an `errno` value without being carried out. Any thread may call it.
///
///     FailingFilePort files(FileOperation::Sync, 1, EIO);
class FailingFilePort : public host::FilePort {
public:
    /// @param error what the call that fails leaves in `errno`
    FailingFilePort(FileOperation operation, unsigned nth, int error);

    /// Calls of an operation so far.
    unsigned calls(FileOperation operation) const;
    /// Whether the call that was to fail has come.
    bool hasFailed() const { return calls(m_operation) >= m_nth; }

    /// @{
    /// As the file port that was in use before, but for the call that fails.
    int open(int directory, const char* path, int flags, mode_t mode) override;
    ssize_t write(int descriptor, const void* data, std::size_t size) override;
    int reserve(int descriptor, off_t size) override;
    int truncate(int descriptor, off_t size) override;
    int sync(int descriptor) override;
    int rename(int fromDirectory, const char* from, int toDirectory, const char* to) override;
    int renameNew(int fromDirectory, const char* from, int toDirectory, const char* to) override;
    int remove(int directory, const char* path) override;
    int makeDirectory(int directory, const char* path, mode_t mode) override;
    /// @}

private:
    bool fails(FileOperation operation);

    const FileOperation m_operation;
    const unsigned m_nth;
    const int m_error;
    std::array<std::atomic<unsigned>, fileOperationCount> m_calls{};
    host::FilePort& m_files{host::FilePort::get()};
    host::FilePortScope m_scope{*this};
};

/// In use as long as it lives. A disk with room for some more bytes: a write takes what fits, and fails with ENOSPC
/// once nothing does; a file is extended whole or not at all. Removing a file gives no room back.
///
///     FullDisk disk(100);
class FullDisk : public host::PosixFilePort {
public:
    /// @param room bytes that fit at first
    explicit FullDisk(std::uint64_t room = 0) : m_room(room) {}

    /// Bytes that still fit.
    std::uint64_t room() const { return m_room.load(); }

    /// Writes what fits; fails with `ENOSPC` once nothing does.
    ssize_t write(int descriptor, const void* data, std::size_t size) override;
    /// Extends the file whole, or fails with `ENOSPC`.
    int reserve(int descriptor, off_t size) override;

private:
    std::uint64_t take(std::uint64_t wanted, bool isPartEnough);

    std::atomic<std::uint64_t> m_room;
    host::FilePortScope m_scope{*this};
};

} // namespace dorn::testkit
