// SPDX-License-Identifier: MIT
/// @file RunLock.hpp
/// One supervisor for a node.
#pragma once

#include "node/RunDirectory.hpp"
#include "port/Descriptor.hpp"

#include <optional>
#include <sys/types.h>

namespace dorn::tool {

/// The right to run the services of a node, held as long as this object or its process lives. The file `board-run` in
/// the node's run directory holds the process id of who has it; it is empty after a proper end.
class RunLock {
public:
    /// @throws Failure when another process has it; the text names it.
    explicit RunLock(const host::RunDirectory& node);
    ~RunLock();
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;

    /// The process that had the right before and died without giving it back, if the latest one did.
    std::optional<pid_t> deadHolder() const { return m_deadHolder; }

private:
    host::Descriptor m_file;
    std::optional<pid_t> m_deadHolder;
};

} // namespace dorn::tool
