// SPDX-License-Identifier: MIT
/// @file ProcessLog.hpp
/// The log that this process writes into the run directory.
#pragma once

#include "log/DropReport.hpp"
#include "log/LogControl.hpp"
#include "log/LogOrigin.hpp"
#include "log/SegmentWriter.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace dorn::host {

/// Writes lines into memory-mapped segments (LogSegment.hpp): a line costs no system call, and the kernel keeps what
/// has been written however the process ends. The first line opens the log.
///
/// Where there is no run directory or no room, this is reported once and lines are dropped, and every retryPeriod the
/// next line tries again; the line after a gap tells how many are missing.
class ProcessLog {
public:
    static constexpr std::size_t defaultSegmentSize = std::size_t{512} * 1024;
    static constexpr Nanoseconds retryPeriod = std::chrono::milliseconds(100);

    explicit ProcessLog(std::size_t segmentSize = defaultSegmentSize) : m_segmentSize(segmentSize) {}

    /// Writes a line, which ends with its line feed.
    void write(std::string_view line, const LogOrigin& origin);
    /// Has the file bear the process's name of now (LogOrigin.hpp).
    void rename();

    /// Keep the log as it is while the process forks.
    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }
    /// In the child, locked: leaves the parent's segment alone; the next line opens one of the child's own.
    void forgetParent() noexcept;

private:
    bool open();
    bool makeRoom(std::size_t size);
    void extend(std::size_t size);
    void openSegments();
    void closeGap();

    const std::size_t m_segmentSize;
    std::mutex m_mutex;
    bool m_isForked = false;
    std::unique_ptr<SegmentWriter> m_segments;
    std::unique_ptr<LogControl> m_control;
    std::unique_ptr<DropReport> m_drops;
    std::uint32_t m_unopened = 0; ///< lines dropped before the log could be opened
    std::string m_whyUnopened;
    std::uint32_t m_dropped = 0; ///< altogether
    Nanoseconds m_retryAt{};
};

} // namespace dorn::host
