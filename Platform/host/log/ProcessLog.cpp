// SPDX-License-Identifier: MIT
#include "log/ProcessLog.hpp"

#include "log/CancellationOff.hpp"
#include "log/LogDirectory.hpp"
#include "log/LogLine.hpp"
#include "node/PerNode.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

namespace dorn::host {
namespace {

constexpr std::size_t gapLineSize = 512;

} // namespace

void ProcessLog::write(std::string_view line, const LogOrigin& origin) noexcept
{
    {
        const std::lock_guard lock(m_mutex);
        const bool isReady = m_segment && m_segment->hasRoom(line.size()) && m_drops->pending() == 0;
        if (!isReady && !makeRoom(line.size())) {
            return;
        }
        if (origin.featureId != 0 && origin.isRegistered) {
            m_segment->noteFeature(origin.featureId, origin.featureName);
        }
        m_segment->append(line);
    }
    if (m_control) {
        m_control->noteLine();
    }
}

bool ProcessLog::open()
{
    if (m_segment || m_isLeftOut) {
        return !m_isLeftOut;
    }
    try {
        const RunDirectory& node = PerNode<RunDirectory>::get();
        Descriptor directory = openLogDirectory(node);
        pruneLogs(directory);
        m_control = std::make_unique<LogControl>(node);
        m_drops = std::make_unique<DropReport>(node.path() + "/" + logDirectoryName);
        m_segment = std::make_unique<SegmentWriter>(std::move(directory), m_segmentSize);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn: %s; the log is not kept there\n", error.what());
        m_isLeftOut = true;
    }
    return !m_isLeftOut;
}

bool ProcessLog::makeRoom(std::size_t size) noexcept
{
    const CancellationOff cancellationOff;
    if (!open()) {
        return false;
    }
    if (m_isForked) {
        m_isForked = false;
        m_dropped = 0;
        m_drops->forget();
    }
    const Nanoseconds now = Clock::get().monotonic();
    int error = m_drops->error();
    if (m_drops->pending() == 0 || now >= m_retryAt) {
        m_retryAt = now + retryPeriod;
        error = extend(size);
    }
    if (error != 0) {
        drop(error);
    }
    return error == 0;
}

void ProcessLog::drop(int error)
{
    m_drops->dropped(error);
    m_segment->noteDropped(++m_dropped);
}

int ProcessLog::extend(std::size_t size) noexcept
{
    size += m_drops->pending() != 0 ? gapLineSize : 0;
    try {
        int error = 0;
        const bool isOpen = m_segment->isOpen();
        if (!isOpen || !m_segment->canHold(size)) {
            error = isOpen ? m_segment->turn() : openSegments();
            m_control->noteFiles();
        }
        if (error == 0 && !m_segment->hasRoom(size)) {
            error = m_segment->reserve(size);
        }
        if (error == 0) {
            closeGap();
        }
        return -error;
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    }
}

int ProcessLog::openSegments()
{
    const LogIdentity identity = logIdentity();
    SegmentName name{identity.eeName, identity.pid, Clock::get().wall().count(), 0};
    int error = m_segment->open(name);
    while (error == -EEXIST) { // a process of this id and name that opened its log at this very time
        ++name.start;
        error = m_segment->open(name);
    }
    return error;
}

void ProcessLog::closeGap()
{
    const int error = m_drops->error();
    const std::uint32_t missing = m_drops->written();
    if (missing == 0) {
        return;
    }
    const LogIdentity identity = logIdentity();
    const LogLine line{Clock::get().wall(),
                       EAaSysLogSeverityLevel_Warning,
                       identity.eeName,
                       identity.pid,
                       {},
                       0,
                       {},
                       std::to_string(missing) + " lines could not be written: " + std::strerror(error)};
    const std::string text = formatLogLine(line) + "\n";
    if (text.size() <= gapLineSize) {
        m_segment->append(text);
    }
}

void ProcessLog::rename()
{
    const CancellationOff cancellationOff;
    const std::lock_guard guard(m_mutex);
    if (m_segment && m_segment->isOpen()) {
        m_segment->rename(logIdentity().eeName);
        m_control->noteFiles();
    }
}

void ProcessLog::forgetParent() noexcept
{
    if (m_segment) {
        m_segment->forget();
        m_isForked = true;
    }
}

} // namespace dorn::host
