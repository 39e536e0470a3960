// SPDX-License-Identifier: MIT
#include "log/LogReader.hpp"

#include "log/SegmentReader.hpp"
#include "node/PerNode.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace dorn::host {
namespace {

constexpr Nanoseconds longestSleep = std::chrono::seconds(1); ///< in case that a writer could not wake us

/// Adds the last @p most lines of @p text, the latest first.
void collectFromEnd(SegmentReader& segment, std::string_view text, std::size_t most, std::vector<LogLine>& lines)
{
    text = text.substr(0, text.rfind('\n') + 1);
    while (!text.empty() && lines.size() < most) {
        const std::size_t before = text.size() > 1 ? text.rfind('\n', text.size() - 2) : std::string_view::npos;
        const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
        if (std::optional<LogLine> line = segment.parse(text.substr(begin))) {
            lines.push_back(*std::move(line));
        }
        text = text.substr(0, begin);
    }
}

} // namespace

/// Where the reading of one process's log stands.
struct LogReader::Tail {
    std::array<std::optional<SegmentReader>, segmentsPerProcess> segments;
    std::uint32_t sequence = 0;              ///< of the filling that is being read
    std::size_t position = 0;                ///< in its text
    Nanoseconds latest = Nanoseconds::min(); ///< time of the latest line, never going back
    bool isGone = false;                     ///< the files have been cleared away; what is open can still be read

    /// The fillings that are there, the oldest first.
    std::map<std::uint32_t, SegmentReader*> fillings()
    {
        std::map<std::uint32_t, SegmentReader*> bySequence;
        for (std::optional<SegmentReader>& segment : segments) {
            if (segment) {
                bySequence.emplace(segment->sequence(), &*segment);
            }
        }
        return bySequence;
    }
};

/// Lines of several processes, in order within each.
struct LogReader::Batch {
    std::vector<std::pair<Nanoseconds, LogLine>> lines;

    void add(Tail& tail, LogLine line)
    {
        tail.latest = std::max(tail.latest, line.wall);
        lines.emplace_back(tail.latest, std::move(line));
    }

    std::vector<LogLine> inOrder()
    {
        std::stable_sort(lines.begin(), lines.end(),
                         [](const auto& left, const auto& right) { return left.first < right.first; });
        std::vector<LogLine> result;
        result.reserve(lines.size());
        for (auto& [time, line] : lines) {
            result.push_back(std::move(line));
        }
        return result;
    }
};

LogReader::LogReader() : LogReader(PerNode<RunDirectory>::get()) {}

LogReader::LogReader(const RunDirectory& node)
    : m_directory(openLogDirectory(node)), m_control(std::make_unique<LogControl>(node))
{
    last(0);
}

LogReader::~LogReader() = default;

std::vector<ProcessLogInfo> LogReader::list() const
{
    std::vector<ProcessLogInfo> infos;
    for (const ProcessSegments& process : listLogs(m_directory)) {
        const SegmentName& name = process.first().name;
        ProcessLogInfo info{name.eeName, name.pid, Nanoseconds(name.start), false, 0, 0};
        bool isAny = false;
        for (const SegmentFile& file : process.files) {
            if (const std::optional<SegmentReader> segment = SegmentReader::open(m_directory, file)) {
                isAny = true;
                info.alive = info.alive || (file.name.number == 0 && segment->isHeld());
                info.dropped = std::max(info.dropped, segment->dropped());
                info.bytes += segment->used();
            }
        }
        if (isAny) {
            infos.push_back(std::move(info));
        }
    }
    return infos;
}

void LogReader::lookForFiles()
{
    const std::uint32_t files = m_control->files();
    if (m_hasLooked && files == m_filesSeen) {
        return;
    }
    for (const auto& [key, tail] : m_tails) {
        tail->isGone = true;
    }
    for (const ProcessSegments& process : listLogs(m_directory)) {
        std::unique_ptr<Tail>& tail = m_tails[{process.first().name.start, process.first().name.pid}];
        if (!tail) {
            tail = std::make_unique<Tail>();
        }
        tail->isGone = false;
        for (const SegmentFile& file : process.files) {
            std::optional<SegmentReader>& segment = tail->segments[file.name.number];
            if (!segment) {
                segment = SegmentReader::open(m_directory, file);
            }
        }
    }
    m_filesSeen = files;
    m_hasLooked = true;
}

void LogReader::readTail(Tail& tail, Batch& batch)
{
    for (const auto& [sequence, segment] : tail.fillings()) {
        if (sequence < tail.sequence) {
            continue;
        }
        if (sequence > tail.sequence) {
            // The filling that was being read is complete, or was written over with all up to this one.
            const bool isNext = sequence == tail.sequence + 1;
            m_gaps += isNext && segment->previousUsed() == tail.position ? 0 : 1;
            tail.sequence = sequence;
            tail.position = 0;
        }
        const std::optional<std::string> text = segment->text(sequence, tail.position);
        if (!text) {
            continue;
        }
        tail.position += text->size();
        for (std::size_t begin = 0, end = text->find('\n'); end != std::string::npos; end = text->find('\n', begin)) {
            if (std::optional<LogLine> line = segment->parse(std::string_view(*text).substr(begin, end - begin))) {
                batch.add(tail, *std::move(line));
            }
            begin = end + 1;
        }
    }
}

std::vector<LogLine> LogReader::readAll()
{
    lookForFiles();
    Batch batch;
    for (const auto& [key, tail] : m_tails) {
        readTail(*tail, batch);
    }
    std::erase_if(m_tails, [](const auto& entry) { return entry.second->isGone; });
    return batch.inOrder();
}

std::vector<LogLine> LogReader::lastOf(Tail& tail, std::size_t count)
{
    std::vector<LogLine> lines;
    const std::map<std::uint32_t, SegmentReader*> fillings = tail.fillings();
    for (auto filling = fillings.rbegin(); filling != fillings.rend(); ++filling) {
        const auto& [sequence, segment] = *filling;
        const std::string text = segment->text(sequence, 0).value_or("");
        if (filling == fillings.rbegin()) {
            tail.sequence = sequence;
            tail.position = text.size();
        }
        collectFromEnd(*segment, text, count, lines);
    }
    std::reverse(lines.begin(), lines.end());
    return lines;
}

std::vector<LogLine> LogReader::last(std::size_t count)
{
    // Read from the beginning of what is there, so that a segment read already counts too.
    m_hasLooked = false;
    m_tails.clear();
    lookForFiles();
    Batch batch;
    for (const auto& [key, tail] : m_tails) {
        for (LogLine& line : lastOf(*tail, count)) {
            batch.add(*tail, std::move(line));
        }
    }
    std::vector<LogLine> lines = batch.inOrder();
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(std::min(count, lines.size())));
    return lines;
}

std::vector<LogLine> LogReader::next(Deadline until)
{
    std::vector<LogLine> lines = readAll();
    while (lines.empty() && !m_isInterrupted.exchange(false)) {
        const Nanoseconds now = Clock::get().monotonic();
        if (now >= until) {
            break;
        }
        const std::uint32_t announced = m_control->announceWait();
        lines = readAll();
        if (lines.empty() && !m_isInterrupted.load()) {
            m_control->waitForLines(announced, std::min(until, now + longestSleep));
            lines = readAll();
        }
    }
    return lines;
}

void LogReader::interrupt()
{
    m_isInterrupted.store(true);
    m_control->wakeReaders();
}

} // namespace dorn::host
