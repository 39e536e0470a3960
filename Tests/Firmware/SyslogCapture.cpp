// SPDX-License-Identifier: MIT
#include "SyslogCapture.hpp"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <syslog.h>

namespace {

std::mutex mutex;
std::vector<std::string>* collected = nullptr;

std::string nameOf(int priority)
{
    switch (priority) {
    case LOG_INFO:
        return "info";
    case LOG_DEBUG:
        return "debug";
    case LOG_ERR:
        return "error";
    default:
        return std::to_string(priority);
    }
}

void collect(int priority, const char* format, va_list arguments)
{
    std::array<char, 4096> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    const std::lock_guard lock(mutex);
    if (collected) {
        collected->push_back(nameOf(priority) + " " + text.data());
    }
}

} // namespace

extern "C" void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    collect(priority, format, arguments);
    va_end(arguments);
}

extern "C" void __syslog_chk(int priority, int /*flag*/, const char* format, ...) // NOLINT: its name with fortification
{
    va_list arguments;
    va_start(arguments, format);
    collect(priority, format, arguments);
    va_end(arguments);
}

namespace dorn::test {

SyslogCapture::SyslogCapture()
{
    const std::lock_guard lock(mutex);
    collected = new std::vector<std::string>;
}

SyslogCapture::~SyslogCapture()
{
    const std::lock_guard lock(mutex);
    delete collected;
    collected = nullptr;
}

std::vector<std::string> SyslogCapture::texts() const
{
    const std::lock_guard lock(mutex);
    return *collected;
}

} // namespace dorn::test
