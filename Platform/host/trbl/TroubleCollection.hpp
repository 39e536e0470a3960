// SPDX-License-Identifier: MIT
/// @file TroubleCollection.hpp
/// Gathers the troubleshooting files of a node.
#pragma once

#include "port/Clock.hpp"
#include "trbl/TroubleFiles.hpp"

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace dorn::host {

/// A file, and whether its process has made it ready.
struct CollectedFile {
    TroubleFile file;
    TroubleAnswer answer; ///< Done also for a file without steps; Pending when its process has not answered in time
};

/// Ends a collection that cannot begin.
class CollectionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// 1. Its begin has every process prepare and store its files, all processes at once.
/// 2. While it lives, the files whose answer is Done can be read, and those of processes that have died too: what they
///    had left behind is there.
/// 3. Its end has every process remove what it stored. A process that stores a file late removes it then.
///
/// A process that crashes in a step, or hangs in it, keeps nobody else's files away.
class TroubleCollection {
public:
    /// @param until when the wait for answers ends
    /// @throws CollectionError when another process still collects at @p until.
    TroubleCollection(const TroubleFiles& list, Deadline until);
    /// Waits for those processes that have answered before, until @p until as well.
    ~TroubleCollection();
    TroubleCollection(const TroubleCollection&) = delete;
    TroubleCollection& operator=(const TroubleCollection&) = delete;

    /// All files of the list, by priority.
    const std::vector<CollectedFile>& files() const { return m_files; }
    /// How long the end may wait.
    void removeUntil(Deadline until) { m_until = until; }

private:
    void begin();
    void orderAll(TroubleOrder order);
    void awaitAll(TroubleOrder order, std::vector<CollectedFile>& files) const;

    const TroubleFiles& m_list;
    Deadline m_until;
    std::uint32_t m_collection = 0;
    std::vector<CollectedFile> m_files;
};

} // namespace dorn::host
