// SPDX-License-Identifier: MIT
/// @file LogControl.hpp
/// How the writers and readers of a node's log find each other: three shared words.
#pragma once

#include "node/SharedStore.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::host {

/// The store `log.control`. A writer wakes readers only when one has said that it is about to sleep, so that a line
/// costs a load; a reader that dies asleep costs one wake-up.
class LogControl {
public:
    /// @throws EnvironmentError
    explicit LogControl(const RunDirectory& directory);

    /// A line has been written.
    void noteLine()
    {
        if (words().waiting.load(std::memory_order_seq_cst) != 0) {
            wakeReaders();
        }
    }
    /// The files have changed: a segment is new or has another name.
    void noteFiles();
    /// Wakes all readers. May be called from a signal handler.
    void wakeReaders();

    /// Changes whenever the files do.
    std::uint32_t files() const { return words().files.load(std::memory_order_seq_cst); }

    /// To be called before the last look for lines before waitForLines().
    /// @return what waitForLines() wants to know.
    std::uint32_t announceWait();
    /// Sleeps until a line has been written since announceWait(), at most until @p until.
    void waitForLines(std::uint32_t announced, Deadline until);

private:
    struct Words {
        SharedStoreHeader header;
        std::atomic<std::uint32_t> waiting; ///< 1: some reader sleeps or is about to
        std::atomic<std::uint32_t> wakeUps; ///< the word that readers sleep on
        std::atomic<std::uint32_t> files;
    };
    Words& words() const { return *reinterpret_cast<Words*>(m_store.data()); }

    SharedStore m_store;
};

} // namespace dorn::host
