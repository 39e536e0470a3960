// SPDX-License-Identifier: MIT
#include "LogCapture.hpp"

#include "log/LogObserver.hpp"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdio>
#include <iterator>
#include <mutex>

namespace dorn::testkit {
namespace {

constexpr std::array severityNames{"NotValid", "Debug", "Info", "Warning", "Error", "Vip", "NoPrints"};
static_assert(severityNames.size() == EAaSysLogSeverityLevel_NoPrints + 1);

} // namespace

/// Lines arrive in every thread that prints.
class LogCapture::Collector {
public:
    Collector() : m_number(host::addLogObserver([this](const host::LogLine& line) { add(line); })) {}
    ~Collector() { host::removeLogObserver(m_number); }
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;

    std::vector<host::LogLine> lines() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

    std::size_t count(const std::string& text) const
    {
        const std::lock_guard lock(m_mutex);
        return countLocked(text);
    }

    bool waitFor(const std::string& text, Bound bound)
    {
        std::unique_lock lock(m_mutex);
        return m_added.wait_for(lock, bound, [&] { return countLocked(text) != 0; });
    }

    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_lines.clear();
    }

private:
    void add(const host::LogLine& line)
    {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(line);
        m_added.notify_all();
    }

    std::size_t countLocked(const std::string& text) const
    {
        return static_cast<std::size_t>(std::count_if(m_lines.begin(), m_lines.end(),
                                                      [&](const host::LogLine& line) { return textOf(line) == text; }));
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    std::vector<host::LogLine> m_lines;
    int m_number; ///< last: lines may arrive as soon as it is there
};

LogCapture::LogCapture() : m_collector(std::make_unique<Collector>()) {}

LogCapture::~LogCapture() = default;

std::vector<host::LogLine> LogCapture::lines() const
{
    return m_collector->lines();
}

std::vector<std::string> LogCapture::texts() const
{
    const std::vector<host::LogLine> lines = m_collector->lines();
    std::vector<std::string> texts;
    std::transform(lines.begin(), lines.end(), std::back_inserter(texts), textOf);
    return texts;
}

std::size_t LogCapture::count(const std::string& text) const
{
    return m_collector->count(text);
}

bool LogCapture::waitFor(const std::string& text, Bound bound) const
{
    return m_collector->waitFor(text, bound);
}

void LogCapture::clear()
{
    m_collector->clear();
}

std::string textOf(const host::LogLine& line)
{
    const auto severity = static_cast<std::size_t>(line.severity);
    std::array<char, 16> feature{};
    std::snprintf(feature.data(), feature.size(), "0x%x", line.featureId);
    return std::string(severityNames.at(severity)) + " " + feature.data() + " " + line.text;
}

} // namespace dorn::testkit
