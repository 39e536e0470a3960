// SPDX-License-Identifier: MIT
/// @file SharedStore.hpp
/// A file of fixed layout in the run directory, mapped by every process of the node.
#pragma once

#include "node/RunDirectory.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace dorn::host {

/// First bytes of every shared store.
struct SharedStoreHeader {
    std::uint32_t magic;   ///< which store this is
    std::uint32_t version; ///< of its layout
    std::uint64_t size;    ///< of the whole file
};

/// What a store must look like.
struct SharedStoreFormat {
    std::uint32_t magic;
    std::uint32_t version;
    std::size_t size; ///< bytes including the header
};

/// Maps a store. Other processes' changes are seen at once; all content is atomics or guarded by record locks.
///
/// The file is created beside, filled with zeros, given its header and then linked under its name, so that nobody ever
/// sees half a store; its room is reserved first, so that a full disk is an error here and not a crash later. A file of
/// another format is set aside as `<name>.broken` with a warning on standard error, and a new one is made; but not
/// while a process holds one of its locks.
class SharedStore {
public:
    /// Opens or creates `<run directory>/<name>`. @throws EnvironmentError
    SharedStore(const RunDirectory& directory, const std::string& name, const SharedStoreFormat& format);
    ~SharedStore();
    SharedStore(const SharedStore&) = delete;
    SharedStore& operator=(const SharedStore&) = delete;

    /// The whole mapping, beginning with the header.
    std::byte* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    /// The file, for a second mapping of a part of it; stays the store's. No other descriptor of the file may be closed
    /// while a record lock is held: the kernel would give up the locks with it.
    int descriptor() const { return m_descriptor; }

    /// Tries to get the record lock on byte @p index for this process; it is given up when the process ends, however.
    /// Threads of one process do not exclude each other.
    bool tryLock(std::size_t index) const;
    /// Tries to get a share in the record lock on byte @p index, which any number of processes may have at once.
    bool tryShare(std::size_t index) const;
    /// Gets the record lock on byte @p index, waiting for other processes.
    void lock(std::size_t index) const;
    void unlock(std::size_t index) const;
    /// The process that holds the record lock on byte @p index, or a share in it; 0 when nobody or this process itself
    /// does.
    int lockHolder(std::size_t index) const;

private:
    int m_descriptor = -1;
    std::byte* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace dorn::host
