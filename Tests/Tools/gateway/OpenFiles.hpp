// SPDX-License-Identifier: MIT
/// @file OpenFiles.hpp
/// The limit of open files.
#pragma once

#include <algorithm>
#include <sys/resource.h>
#include <sys/types.h>

namespace dorn::gateway::test {

/// The limit of open files of this process and those that it starts while it lives.
class OpenFiles {
public:
    explicit OpenFiles(rlim_t soft)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit limit{std::min(soft, m_before.rlim_max), m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~OpenFiles() { setrlimit(RLIMIT_NOFILE, &m_before); }
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;
    rlim_t hard() const { return m_before.rlim_max; }

private:
    rlimit m_before{};
};

/// Another process, one that runs, can open nothing while this lives.
class NothingCanBeOpened {
public:
    explicit NothingCanBeOpened(pid_t process) : m_process(process)
    {
        prlimit(m_process, RLIMIT_NOFILE, nullptr, &m_before);
        // Less than it has open, but as many as it waits for: `poll` takes no more.
        const rlimit none{16, m_before.rlim_max};
        prlimit(m_process, RLIMIT_NOFILE, &none, nullptr);
    }
    ~NothingCanBeOpened() { prlimit(m_process, RLIMIT_NOFILE, &m_before, nullptr); }
    NothingCanBeOpened(const NothingCanBeOpened&) = delete;
    NothingCanBeOpened& operator=(const NothingCanBeOpened&) = delete;

private:
    pid_t m_process;
    rlimit m_before{};
};

} // namespace dorn::gateway::test
