// SPDX-License-Identifier: MIT
/// @file StateFile.hpp
/// What drivers change on the board: files below the board root, which keep it when processes end.
///
/// All of them lie in the target's directory `/var/lib/dorn/board`. Each is there whole or not at all, whoever dies
/// while it is written; a file that cannot be understood is set aside as `<name>.broken` and counts as missing. Who
/// writes one holds its lock.
#pragma once

#include "description/BoardFailure.hpp"
#include "port/Descriptor.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

namespace dorn::board {

/// A file that holds state.
class StateFile {
public:
    /// @param name without a directory
    explicit StateFile(std::string name) : m_name(std::move(name)) {}

    const std::string& name() const { return m_name; }
    /// Its path on the target, as it stands in messages.
    std::string path() const;

    /// Opens it for reading. @return nothing when it is not there. @throws BoardFailure when it cannot be opened.
    host::Descriptor open() const;
    /// Opens it for reading and writing, and makes it when it is missing. @throws BoardFailure
    host::Descriptor openOrMake() const;
    /// The content of a small file; nothing when it is not there. @throws BoardFailure
    std::optional<std::string> read() const;

    /// Writes all of @p data where @p descriptor, which this file was opened with, stands. @throws BoardFailure
    void write(int descriptor, const void* data, std::size_t size) const;
    /// Replaces the content in one step. The caller holds the lock. @throws BoardFailure
    void replace(const std::string& content) const;
    /// Replaces the content, in one step, by a copy of the next @p size bytes of @p source. The caller holds the lock.
    /// @throws BoardFailure, also when there are fewer.
    void replaceByCopy(int source, std::uint64_t size) const;
    /// Removes the file, if it can be.
    void remove() const noexcept;
    /// Moves the file out of the way, having said why. @param reason as in "is no number"
    void setAside(const std::string& reason) const;

    /// Fails because of this file: "'<path>' <what>: <error>".
    [[noreturn]] void fail(const std::string& what, int error) const;

private:
    std::string m_name;
};

/// The lock of a state file, or of several that belong together, among the threads and processes of the board. The
/// kernel gives it up when its process ends, however.
class StateLock {
public:
    /// Waits for the lock. @throws BoardFailure when there can be none.
    explicit StateLock(const std::string& name);
    /// Takes the lock unless somebody holds it. @return nothing then. @throws BoardFailure
    static std::optional<StateLock> tryTake(const std::string& name);

private:
    explicit StateLock(host::Descriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    host::Descriptor m_descriptor;
};

} // namespace dorn::board
