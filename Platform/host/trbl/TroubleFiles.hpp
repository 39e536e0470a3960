// SPDX-License-Identifier: MIT
/// @file TroubleFiles.hpp
/// The node's list of files that are collected when troubleshooting data is gathered.
///
/// 1. A process registers a file with add(). From then on every process of the node finds it in list().
/// 2. Who gathers data takes the files of the list in its order. A file that is produced for the occasion is produced
/// by
///    the process that registered it, in collectOwn().
///
/// A file stays in the list when its process has ended: what a dead process has left behind is wanted most.
#pragma once

#include "AaTrbl.h"
#include "node/SharedStore.hpp"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace dorn::host {

/// A registered file as every process of the node knows it.
struct TroubleFile {
    std::string name;
    std::string path; ///< the target's
    std::uint32_t priority;
    bool isProduced;      ///< whether it is there only while its process collects it
    std::int32_t pid = 0; ///< the process that registered it last
};

/// What a process does for a file of its own; each may be null.
struct TroubleFileSteps {
    TAaTrblFileCallback prepare;
    TAaTrblFileCallback store;
    TAaTrblFileCallback remove;
    void* opaque;
};

/// All functions may be called from any thread.
class TroubleFiles {
public:
    static constexpr std::size_t capacity = 128;
    static constexpr std::size_t nameSize = 64;  ///< with the terminator
    static constexpr std::size_t pathSize = 256; ///< with the terminator

    /// Opens the list of this process's node. @throws EnvironmentError. Use it through `PerNode<TroubleFiles>`.
    TroubleFiles();
    explicit TroubleFiles(const RunDirectory& directory);

    /// Puts a file of this process into the list; one of the same name and path, of whichever process, is replaced.
    /// @param file name and path fit their sizes.
    /// @return false when the list is full.
    bool add(const TroubleFile& file, const TroubleFileSteps& steps);

    /// All files of the node, by priority.
    std::vector<TroubleFile> list() const;

    /// Goes through the files of this process by priority: prepares each, has it stored, gives it to @p take and has it
    /// removed. A file of which a step fails is not taken.
    void collectOwn(const std::function<void(const TroubleFile&)>& take) const;

private:
    struct Record;
    struct Own {
        TroubleFile file;
        TroubleFileSteps steps;
    };

    Record* records() const;
    Record* placeOf(const TroubleFile& file) const;

    SharedStore m_store;
    mutable std::mutex m_mutex; ///< guards m_own, and the list among threads of this process
    std::vector<Own> m_own;
};

} // namespace dorn::host
