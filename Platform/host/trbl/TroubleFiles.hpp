// SPDX-License-Identifier: MIT
/// @file TroubleFiles.hpp
/// The node's list of files that are collected when troubleshooting data is gathered.
///
/// 1. A process registers a file with add(). From then on every process of the node finds it in list().
/// 2. Who gathers data asks the processes for their files with a TroubleCollection (TroubleCollection.hpp). A process
///    that has steps for a file takes them itself, on the thread "AaTrbl", which is started with the first such file
///    and sleeps while nobody asks.
///
/// A file stays in the list when its process has ended: what a dead process has left behind is wanted most.
#pragma once

#include "AaTrbl.h"
#include "config/SharedSignal.hpp"
#include "node/SharedStore.hpp"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace dorn::host {

/// A registered file as every process of the node knows it.
struct TroubleFile {
    std::string name;
    std::string path; ///< the target's
    std::uint32_t priority;
    bool hasSteps;         ///< whether its process has something to do when it is collected
    std::int32_t pid = 0;  ///< the process that registered it last
    std::size_t place = 0; ///< in the list
};

/// What a process does for a file of its own; each may be null.
struct TroubleFileSteps {
    TAaTrblFileCallback prepare;
    TAaTrblFileCallback store;
    TAaTrblFileCallback remove;
    void* opaque;

    bool isAny() const { return prepare || store || remove; }
};

/// What a process is asked to do with a file.
enum class TroubleOrder : std::uint32_t { Store = 0, Remove = 1 };

/// What has become of an order.
enum class TroubleAnswer {
    Pending,
    Done,
    Failed, ///< a step has failed
    Dead    ///< the process has ended
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
    /// Ends the thread. Not called by a step; waits for one that runs.
    ~TroubleFiles();
    TroubleFiles(const TroubleFiles&) = delete;
    TroubleFiles& operator=(const TroubleFiles&) = delete;

    /// Puts a file of this process into the list; one of the same name and path, of whichever process, is replaced.
    /// @param name fits nameSize @param path fits pathSize
    /// @return false when the list is full. @throws std::system_error when the thread cannot be started.
    bool add(const std::string& name, const std::string& path, std::uint32_t priority, const TroubleFileSteps& steps);

    /// All files of the node, by priority.
    std::vector<TroubleFile> list() const;

    // For TroubleCollection:

    /// Makes this process the one of the node that collects. @return false when another does.
    bool beginCollection() const;
    void endCollection() const;
    /// A number for a collection that no other one has had for long.
    std::uint32_t newCollection() const;
    /// Asks the process of a file to do something. announceOrders() wakes the processes.
    void order(const TroubleFile& file, std::uint32_t collection, TroubleOrder order) const;
    void announceOrders() const;
    TroubleAnswer answer(const TroubleFile& file, std::uint32_t collection, TroubleOrder order) const;
    /// Counts answers.
    SharedSignal& answers() const;

private:
    struct Header;
    struct Record;
    struct Own {
        TroubleFile file;
        TroubleFileSteps steps;
    };

    Header& header() const;
    Record* records() const;
    Record* placeOf(const std::string& name, const std::string& path) const;
    bool enter(TroubleFile& file) const;
    bool isAlive(std::int32_t pid) const;

    void start();
    void run();
    bool serve();
    bool carryOut(const Own& own, TroubleOrder order);

    SharedStore m_store;
    mutable std::mutex m_mutex; ///< guards m_own, and the list among threads of this process
    std::vector<Own> m_own;     ///< by priority

    std::set<std::size_t> m_stored; ///< places of the files that are there to be taken; the thread's own
    std::atomic<bool> m_isStopping{false};
    std::thread m_thread;
};

} // namespace dorn::host
