// SPDX-License-Identifier: MIT
#include "log/TextSink.hpp"

#include "log/LogLine.hpp"
#include "log/LogText.hpp"
#include "log/StderrSink.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/syslog_sink.h>
#include <string>
#include <unistd.h>

namespace dorn::host {
namespace {

spdlog::level::level_enum levelOf(EAaSysLogSeverityLevel severity)
{
    constexpr std::array<spdlog::level::level_enum, 6> levels{spdlog::level::debug, spdlog::level::debug,
                                                              spdlog::level::info,  spdlog::level::warn,
                                                              spdlog::level::err,   spdlog::level::critical};
    static_assert(levels.size() == EAaSysLogSeverityLevel_Vip + 1);
    const auto index = static_cast<std::size_t>(severity);
    return levels[index < levels.size() ? index : 0];
}

class FileSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    FileSink(const std::string& path, const RotationLimits& limits) : m_file(path, limits) {}

protected:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        m_file.write({message.payload.data(), message.payload.size()});
    }
    void flush_() override {}

private:
    RotatingFile m_file;
};

/// Any sink of spdlog.
class SpdlogSink final : public TextSink {
public:
    SpdlogSink(std::unique_ptr<spdlog::sinks::sink> sink, std::size_t skippedBegin, std::size_t skippedEnd)
        : m_sink(std::move(sink)), m_skippedBegin(skippedBegin), m_skippedEnd(skippedEnd)
    {
    }

    void write(EAaSysLogSeverityLevel severity, std::string_view line) override
    {
        line.remove_prefix(m_skippedBegin);
        line.remove_suffix(m_skippedEnd);
        const spdlog::string_view_t payload(line.data(), line.size());
        m_sink->log(spdlog::details::log_msg({}, spdlog::source_loc{}, {}, levelOf(severity), payload));
    }

private:
    std::unique_ptr<spdlog::sinks::sink> m_sink;
    std::size_t m_skippedBegin;
    std::size_t m_skippedEnd;
};

bool wantsColour()
{
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isRefused = (noColour && *noColour) || !terminal || std::strcmp(terminal, "dumb") == 0;
    return !isRefused && isatty(STDERR_FILENO) != 0;
}

} // namespace

std::unique_ptr<TextSink> openStderrSink()
{
    return std::make_unique<StderrSink>(wantsColour());
}

std::unique_ptr<TextSink> openFileSink(const std::string& path, const RotationLimits& limits)
{
    return std::make_unique<SpdlogSink>(std::make_unique<FileSink>(path, limits), 0, 0);
}

std::unique_ptr<TextSink> openSyslogSink(const std::string& socketPath)
{
    if (access(socketPath.c_str(), W_OK) != 0) {
        throw EnvironmentError("log daemon at '" + socketPath + "' cannot be reached: " + std::strerror(errno));
    }
    auto sink = std::make_unique<spdlog::sinks::syslog_sink_st>("dorn", 0, LOG_USER, false);
    return std::make_unique<SpdlogSink>(std::move(sink), logTimeLength + 1, 1);
}

} // namespace dorn::host
