// SPDX-License-Identifier: MIT
#include "log/ProcessLog.hpp"

#include "log/LogDirectory.hpp"
#include "log/LogLine.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "port/CancellationOff.hpp"
#include "port/StandardStreams.hpp"

#include <cerrno>
#include <cstring>
#include <exception>

namespace dorn::host {
namespace {

constexpr std::size_t gapLineSize = 512;

/// Throws the error that a FilePort has given. @param result 0 or -`errno`
void orThrow(int result)
{
    if (result != 0) {
        throw EnvironmentError(std::strerror(-result));
    }
}

} // namespace

void ProcessLog::write(std::string_view line, const LogOrigin& origin)
{
    {
        const std::lock_guard lock(m_mutex);
        const bool isReady = m_segments && m_segments->hasRoom(line.size()) && m_drops->pending() == 0;
        if (!isReady && !makeRoom(line.size())) {
            return;
        }
        if (origin.featureId != 0 && origin.isRegistered) {
            m_segments->noteFeature(origin.featureId, origin.featureName);
        }
        m_segments->append(line);
    }
    m_control->noteLine();
}

bool ProcessLog::open()
{
    if (m_segments) {
        return true;
    }
    const Nanoseconds now = Clock::get().monotonic();
    if (m_unopened != 0 && now < m_retryAt) {
        ++m_unopened;
        return false;
    }
    m_retryAt = now;
    try {
        const RunDirectory& node = PerNode<RunDirectory>::get();
        Descriptor directory = openLogDirectory(node);
        pruneLogs(directory);
        m_drops = std::make_unique<DropReport>(node.path() + "/" + logDirectoryName, m_unopened, m_whyUnopened);
        m_segments = std::make_unique<SegmentWriter>(std::move(directory), m_segmentSize);
        m_dropped = m_unopened;
        m_segments->noteDropped(m_dropped);
    } catch (const EnvironmentError& error) {
        m_retryAt += retryPeriod;
        if (m_unopened++ == 0) {
            m_whyUnopened = error.what();
            writeToStandardError("dorn: " + m_whyUnopened + "; the log is not kept there\n");
        }
    }
    return m_segments != nullptr;
}

bool ProcessLog::makeRoom(std::size_t size)
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
    std::string reason = m_drops->reason();
    if (m_drops->pending() == 0 || now >= m_retryAt) {
        m_retryAt = now + retryPeriod;
        try {
            extend(size);
            return true;
        } catch (const std::exception& error) {
            reason = error.what();
        }
    }
    m_drops->dropped(reason);
    m_segments->noteDropped(++m_dropped);
    return false;
}

void ProcessLog::extend(std::size_t size)
{
    size += m_drops->pending() != 0 ? gapLineSize : 0;
    if (!m_control) {
        m_control = std::make_unique<LogControl>(PerNode<RunDirectory>::get());
    }
    if (!m_segments->isOpen()) {
        openSegments();
        m_control->noteFiles();
    } else if (!m_segments->canHold(size)) {
        orThrow(m_segments->turn());
        m_control->noteFiles();
    }
    if (!m_segments->hasRoom(size)) {
        orThrow(m_segments->reserve(size));
    }
    closeGap();
}

void ProcessLog::openSegments()
{
    const LogIdentity identity = logIdentity();
    SegmentName name{identity.eeName, identity.pid, Clock::get().wall().count(), 0};
    int error = m_segments->open(name);
    while (error == -EEXIST) { // a process of this id and name that opened its log at this very time
        ++name.start;
        error = m_segments->open(name);
    }
    orThrow(error);
}

void ProcessLog::closeGap()
{
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
                       "Lines that could not be written: " + std::to_string(missing) + " (" + m_drops->reason() + ")"};
    const std::string text = formatLogLine(line) + "\n";
    if (text.size() <= gapLineSize) {
        m_segments->append(text);
    }
}

void ProcessLog::rename()
{
    const CancellationOff cancellationOff;
    const std::lock_guard guard(m_mutex);
    if (m_segments && m_segments->isOpen()) {
        m_segments->rename(logIdentity().eeName);
        m_control->noteFiles();
    }
}

void ProcessLog::forgetParent() noexcept
{
    m_unopened = 0;
    if (m_segments) {
        m_segments->forget();
        m_isForked = true;
    }
}

} // namespace dorn::host
