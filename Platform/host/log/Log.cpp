// SPDX-License-Identifier: MIT
#include "log/Log.hpp"

#include "log/LineBuilder.hpp"
#include "log/LogObservers.hpp"
#include "log/LogOrigin.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "port/CancellationOff.hpp"
#include "port/StandardStreams.hpp"

#include <cstdlib>
#include <exception>
#include <pthread.h>

namespace dorn::host {
namespace {

/// Has lines of this severity reach the print functions.
void lowerCallLevel(EAaSysLogSeverityLevel severity)
{
    const auto wanted = static_cast<std::int32_t>(severity);
    std::int32_t level = __atomic_load_n(&AaSysLogCallLevel, __ATOMIC_RELAXED);
    while (wanted < level && !__atomic_compare_exchange_n(&AaSysLogCallLevel, &level, wanted, false, __ATOMIC_RELAXED,
                                                          __ATOMIC_RELAXED)) {
    }
}

} // namespace

Log::Log()
{
    // Forks copy locks as they are: they happen while no other thread holds one.
    [[maybe_unused]] static const int registered = pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);
    const CancellationOff cancellationOff;
    LogComplaints complaints;
    m_settings = parseLogSettings(std::getenv("DORN_LOG"), std::getenv("DORN_LOG_LEVEL"), complaints);
    for (const std::string& complaint : complaints) {
        writeToStandardError("dorn: " + complaint + "\n");
    }
    setLogIdentity({});
    openSinks();
    __atomic_store_n(&AaSysLogCallLevel, static_cast<std::int32_t>(m_settings.leastSeverity), __ATOMIC_RELAXED);
}

Log::~Log()
{
    __atomic_store_n(&AaSysLogCallLevel, 0, __ATOMIC_RELAXED); // the next line reads the environment anew
    setLogIdentity({});
}

template <class Open>
void Log::openSink(Open open)
{
    try {
        m_textSinks.push_back(open());
    } catch (const std::exception& error) {
        writeToStandardError(std::string("dorn: ") + error.what() + "; the sink is left out\n");
    }
}

void Log::openSinks()
{
    if (m_settings.toStderr) {
        openSink([] { return openStderrSink(); });
    }
    if (m_settings.toSyslog) {
        openSink([] { return openSyslogSink(); });
    }
    for (const std::string& path : m_settings.files) {
        openSink([&path] { return openFileSink(path); });
    }
}

bool Log::isKept(EAaSysLogSeverityLevel severity, std::uint32_t featureId) const
{
    return severity >= m_settings.leastSeverity || (featureId != 0 && AaConfigRadGetValue(featureId) != 0);
}

void Log::print(EAaSysLogSeverityLevel severity, std::uint32_t featureId, const char* format, va_list arguments)
{
    if (severity == EAaSysLogSeverityLevel_NoPrints) {
        return;
    }
    if (severity > EAaSysLogSeverityLevel_NoPrints) {
        severity = EAaSysLogSeverityLevel_NotValid;
    }
    const bool kept = isKept(severity, featureId);
    if (!kept && !m_ringBuffers.wants(severity, featureId)) {
        return;
    }
    const Nanoseconds wall = Clock::get().wall();
    const LogOrigin& origin = currentLogOrigin(featureId);
    LineBuilder line;
    line.build(wall, severity, origin, format, arguments);
    if (kept) {
        keep(severity, origin, wall, line);
    }
    m_ringBuffers.append(severity, featureId, line.line());
}

void Log::keep(EAaSysLogSeverityLevel severity, const LogOrigin& origin, Nanoseconds wall, const LineBuilder& line)
{
    if (m_settings.toRunDirectory) {
        m_processLog.write(line.line(), origin);
    }
    if (!m_textSinks.empty()) {
        const CancellationOff cancellationOff;
        const std::lock_guard lock(m_textSinkMutex);
        for (const std::unique_ptr<TextSink>& sink : m_textSinks) {
            sink->write(severity, line.line());
        }
    }
    if (hasLogObservers()) {
        const LogIdentity identity = logIdentity();
        const std::string_view euName(origin.euName.data(), origin.euLength);
        tellLogObservers({wall, severity, identity.eeName, identity.pid, std::string(euName), origin.featureId,
                          origin.featureName.data(), std::string(line.text())});
    }
}

void Log::setName(const std::string& eeName)
{
    setLogIdentity(eeName);
    m_processLog.rename();
}

int Log::addRingBuffer(std::uint32_t featureId, std::uint32_t size, EAaSysLogSeverityLevel leastSeverity,
                       TAaSysLogErrorPrintCallback onTooLong)
{
    const int result = m_ringBuffers.add(featureId, size, leastSeverity, onTooLong);
    if (result == 0) {
        lowerCallLevel(leastSeverity);
    }
    return result;
}

void Log::lockAll()
{
    m_textSinkMutex.lock();
    m_ringBuffers.lock();
    m_processLog.lock();
    lockLogIdentity();
}

void Log::unlockAll()
{
    unlockLogIdentity();
    m_processLog.unlock();
    m_ringBuffers.unlock();
    m_textSinkMutex.unlock();
}

void Log::beforeFork()
{
    if (Log* const log = PerNode<Log>::ifOpen()) {
        log->lockAll();
    }
}

void Log::afterForkInParent()
{
    if (Log* const log = PerNode<Log>::ifOpen()) {
        log->unlockAll();
    }
}

void Log::afterForkInChild()
{
    if (Log* const log = PerNode<Log>::ifOpen()) {
        log->m_processLog.forgetParent();
        refreshLogIdentity();
        log->unlockAll();
    }
}

} // namespace dorn::host
