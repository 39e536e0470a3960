// SPDX-License-Identifier: MIT
/// @file OpenFile.hpp
/// An open file of the target.
#pragma once

#include "port/Descriptor.hpp"

#include <array>
#include <cstddef>
#include <mutex>
#include <sys/types.h>

namespace dorn::host {

/// `open` flags of an `fopen` mode; -EINVAL when it is none.
int openFlags(const char* mode);

/// Reads small pieces through a buffer and writes without one, so that whoever writes learns at once whether it worked
/// and a process that dies loses nothing. Every function may be called from several threads at once. On failure a
/// function returns -1 and sets `errno`.
class OpenFile {
public:
    explicit OpenFile(Descriptor descriptor) : m_descriptor(std::move(descriptor)) {}

    /// @return 0 or an `errno` value.
    int close();
    /// Reads up to @p size bytes; fewer only at the end of the file.
    ssize_t read(char* to, std::size_t size);
    /// @return the bytes written; fewer than @p size when the rest failed.
    ssize_t write(const char* from, std::size_t size);
    /// Reads up to and including the next line feed, at most @p size bytes. @return 0 at the end of the file.
    ssize_t readLine(char* to, std::size_t size);
    off_t size();
    /// Moves the position. @param whence as for `lseek` @return the new position.
    off_t seek(off_t offset, int whence);
    off_t position();

private:
    ssize_t readDirectly(char* to, std::size_t size);
    ssize_t readSome(char* to, std::size_t size);
    bool fill();
    bool forgetBuffer();
    std::size_t takeBuffered(char* to, std::size_t size);

    std::mutex m_mutex;
    Descriptor m_descriptor;
    std::array<char, 4096> m_buffer; // NOLINT: filled before it is read
    std::size_t m_begin = 0;         ///< of what has been read from the file and not yet been asked for
    std::size_t m_end = 0;
};

} // namespace dorn::host
