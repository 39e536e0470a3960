// SPDX-License-Identifier: MIT
/// @file LogReader.hpp
/// Reads the log of a whole node: the lines of all its processes, in the order of their times.
///
/// 1. Make a LogReader; list() tells whose logs there are.
/// 2. last() yields the latest lines.
/// 3. next() yields the lines that come after, and sleeps until there are some.
#pragma once

#include "log/LogControl.hpp"
#include "log/LogDirectory.hpp"
#include "log/LogLine.hpp"
#include "port/Clock.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dorn::host {

/// A process that has written lines.
struct ProcessLogInfo {
    std::string eeName;
    std::int32_t pid = 0;
    Nanoseconds since{};       ///< when it opened its log, wall clock
    bool alive = false;        ///< false: it has ended, however; its latest lines are still there
    std::uint32_t dropped = 0; ///< lines that it could not write
    std::size_t bytes = 0;     ///< of lines that are there
};

/// Reads what the processes of one node write. For one thread, but for interrupt().
class LogReader {
public:
    /// Reads the node that the environment gives. @throws EnvironmentError when its run directory cannot be used.
    LogReader();
    explicit LogReader(const RunDirectory& node);
    ~LogReader();
    LogReader(const LogReader&) = delete;
    LogReader& operator=(const LogReader&) = delete;

    /// The processes whose lines are there, the one that started first first.
    std::vector<ProcessLogInfo> list() const;

    /// The latest @p count lines of all that are there, the oldest first. next() goes on behind them.
    std::vector<LogLine> last(std::size_t count);

    /// The lines since the last call, the oldest first; before it, since last() or since the LogReader was made. Waits
    /// for some until @p until. The lines of one process keep their order also when the wall clock was set back.
    /// @return nothing when the time has passed or interrupt() was called.
    std::vector<LogLine> next(Deadline until);

    /// Has next(), the running one or the one to come, return. May be called from any thread and in a signal handler.
    void interrupt();

    /// How many times a process wrote lines over that had not been read yet.
    std::uint64_t gaps() const { return m_gaps; }

private:
    struct Tail;
    struct Batch;

    void lookForFiles();
    void readTail(Tail& tail, Batch& batch);
    std::vector<LogLine> readAll();
    static std::vector<LogLine> lastOf(Tail& tail, std::size_t count);

    Descriptor m_directory;
    std::unique_ptr<LogControl> m_control;
    std::map<std::pair<std::int64_t, std::int32_t>, std::unique_ptr<Tail>> m_tails; ///< by start and process id
    bool m_hasLooked = false;
    std::uint32_t m_filesSeen = 0;
    std::uint64_t m_gaps = 0;
    std::atomic<bool> m_isInterrupted{false};
};

} // namespace dorn::host
