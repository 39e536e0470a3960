// SPDX-License-Identifier: MIT
/// @file OwnVerb.hpp
/// A verb of this command, run beside it.
#pragma once

#include "port/Clock.hpp"
#include "port/Descriptor.hpp"

#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::tool {

/// A verb in a process of its own, so that what hangs or crashes in it harms nobody else. What it answers is kept in
/// memory, however much it is.
///
/// 1. The constructor starts it.
/// 2. awaitEnd() waits for it; the answer can then be read.
class OwnVerb {
public:
    /// @param arguments what stands behind `dorn` @throws Failure when it cannot be started.
    explicit OwnVerb(std::vector<std::string> arguments);
    /// Kills it if it still runs.
    ~OwnVerb();
    OwnVerb(const OwnVerb&) = delete;
    OwnVerb& operator=(const OwnVerb&) = delete;

    /// Waits for the end, at most until @p until. @return whether it has ended.
    bool awaitEnd(host::Deadline until);

    /// "dorn service list --json"
    std::string command() const;
    /// The exit status; -1 when it has not ended by itself.
    int status() const { return m_status; }
    /// What it has written to standard output so far.
    std::string answer() const { return contentOf(m_answer); }
    /// What it has written to standard error so far.
    std::string remarks() const { return contentOf(m_remarks); }

private:
    static std::string contentOf(const host::Descriptor& file);

    std::vector<std::string> m_arguments;
    host::Descriptor m_answer;
    host::Descriptor m_remarks;
    pid_t m_pid = -1;
    int m_status = -1;
};

} // namespace dorn::tool
