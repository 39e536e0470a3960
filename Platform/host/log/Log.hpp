// SPDX-License-Identifier: MIT
/// @file Log.hpp
/// The process's log: which lines are kept, and where they go.
#pragma once

#include "AaSysLog.h"
#include "log/LogSettings.hpp"
#include "log/ProcessLog.hpp"
#include "log/RingBuffers.hpp"
#include "log/TextSink.hpp"

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace dorn::host {

class LineBuilder;

/// Use it through `PerNode<Log>`. Reads the environment when it is made; what is wrong there, and each sink that cannot
/// be opened, is reported on standard error once.
class Log {
public:
    Log();
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// Prints a line if it is to be kept. @p featureId is 0 for a line that belongs to no feature.
    void print(EAaSysLogSeverityLevel severity, std::uint32_t featureId, const char* format, va_list arguments);

    void setName(const std::string& eeName);
    int addRingBuffer(std::uint32_t featureId, std::uint32_t size, EAaSysLogSeverityLevel leastSeverity,
                      TAaSysLogErrorPrintCallback onTooLong);
    const RingBuffers& ringBuffers() const { return m_ringBuffers; }

private:
    static void beforeFork();
    static void afterForkInParent();
    static void afterForkInChild();
    void lockAll();
    void unlockAll();

    void openSinks();
    template <class Open>
    void openSink(Open open);
    bool isKept(EAaSysLogSeverityLevel severity, std::uint32_t featureId) const;
    void keep(EAaSysLogSeverityLevel severity, const LogOrigin& origin, Nanoseconds wall, const LineBuilder& line);

    LogSettings m_settings;
    RingBuffers m_ringBuffers;
    ProcessLog m_processLog;
    std::mutex m_textSinkMutex;
    std::vector<std::unique_ptr<TextSink>> m_textSinks;
};

} // namespace dorn::host
