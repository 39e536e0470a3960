// SPDX-License-Identifier: MIT
#include "AaSysLog.h"

#include "log/Log.hpp"
#include "log/LogName.hpp"
#include "node/BoardRoot.hpp"
#include "node/PerNode.hpp"
#include "port/FilePort.hpp"

#include <cerrno>
#include <cstdarg>
#include <exception>
#include <fcntl.h>
#include <optional>

namespace dorn::host {
namespace {

/// A print leaves `errno` alone: callers print about a failure first and look at it afterwards.
class ErrnoKept {
public:
    ErrnoKept() : m_value(errno) {}
    ~ErrnoKept() { restore(); }
    void restore() const { errno = m_value; }
    ErrnoKept(const ErrnoKept&) = delete;
    ErrnoKept& operator=(const ErrnoKept&) = delete;

private:
    int m_value;
};

void print(EAaSysLogSeverityLevel severity, std::uint32_t featureId, const char* format, va_list arguments)
{
    const ErrnoKept errnoKept;
    try {
        Log& log = PerNode<Log>::get();
        errnoKept.restore(); // for "%m"
        log.print(severity, featureId, format, arguments);
    } catch (const std::bad_alloc&) {
        // The line is lost: there is nobody to tell without memory.
    }
}

bool writeWhole(const Descriptor& file, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t written = FilePort::get().write(file.get(), data.data(), data.size());
        if (written <= 0 && written != -EINTR) {
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

enum Dump : std::int32_t { dumped = 0, noRingBuffer = 1, notWritten = 2 };

std::int32_t dumpRingBuffer(std::uint32_t featureId, const char* path)
{
    const std::optional<std::string> lines = PerNode<Log>::get().ringBuffers().content(featureId);
    if (!lines) {
        return noRingBuffer;
    }
    const std::string target = path ? boardPath(path) : std::string();
    if (target.empty()) {
        return notWritten;
    }
    const Descriptor file(FilePort::get().open(AT_FDCWD, target.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644));
    return file && writeWhole(file, *lines) ? dumped : notWritten;
}

} // namespace

void nameLog(const std::string& eeName)
{
    PerNode<Log>::get().setName(eeName);
}

} // namespace dorn::host

constinit int32_t AaSysLogCallLevel = 0; // until the first line has read the environment

void(AaSysLogPrintE)(EAaSysLogSeverityLevel severity, uint32_t featureId, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    dorn::host::print(severity, featureId, format, arguments);
    va_end(arguments);
}

void(AaSysLogPrint)(EAaSysLogSeverityLevel severity, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    dorn::host::print(severity, 0, format, arguments);
    va_end(arguments);
}

int32_t AaSysLogRegisterRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                   TAaSysLogErrorPrintCallback errorPrintCallback)
{
    constexpr int32_t noMemory = 2;
    try {
        return dorn::host::PerNode<dorn::host::Log>::get().addRingBuffer(featureId, bufferSize, severityLevel,
                                                                         errorPrintCallback);
    } catch (const std::bad_alloc&) {
        return noMemory;
    }
}

int32_t AaSysLogDumpRingBufferToFile(uint32_t featureId, const char* path)
{
    try {
        return dorn::host::dumpRingBuffer(featureId, path);
    } catch (const std::bad_alloc&) {
        return dorn::host::notWritten;
    }
}
