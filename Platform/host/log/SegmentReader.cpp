// SPDX-License-Identifier: MIT
#include "log/SegmentReader.hpp"

#include "node/FixedText.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

/// No segment is as large; whatever says so is damaged.
constexpr std::size_t greatestText = std::size_t{16} << 20;

bool readAt(const Descriptor& file, void* to, std::size_t size, std::size_t offset)
{
    return pread(file.get(), to, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

template <class Value>
Value valueAt(const Descriptor& file, std::size_t offset)
{
    Value value{};
    return readAt(file, &value, sizeof value, offset) ? value : Value{};
}

} // namespace

std::optional<SegmentReader> SegmentReader::open(const Descriptor& directory, const SegmentFile& file)
{
    Descriptor segment = openSegment(directory, file.fileName);
    if (!segment) {
        return std::nullopt;
    }
    const auto magic = valueAt<std::array<char, 8>>(segment, offsetof(SegmentHeader, magic));
    const bool isOwn =
        magic == SegmentHeader::expectedMagic &&
        valueAt<std::uint32_t>(segment, offsetof(SegmentHeader, version)) == SegmentHeader::expectedVersion &&
        valueAt<std::int32_t>(segment, offsetof(SegmentHeader, pid)) == file.name.pid &&
        valueAt<std::int64_t>(segment, offsetof(SegmentHeader, start)) == file.name.start;
    return isOwn ? std::optional(SegmentReader(std::move(segment))) : std::nullopt;
}

std::uint32_t SegmentReader::word(std::size_t offset) const
{
    const auto value = valueAt<std::uint32_t>(m_file, offset);
    std::atomic_thread_fence(std::memory_order_acquire); // what the word speaks of is read after it
    return value;
}

std::size_t SegmentReader::used() const
{
    const std::size_t used = word(offsetof(SegmentHeader, used));
    struct stat status {};
    const bool fits = used <= greatestText && fstat(m_file.get(), &status) == 0 &&
                      segmentTextBegin + used <= static_cast<std::size_t>(status.st_size);
    return fits ? used : 0;
}

std::size_t SegmentReader::previousUsed() const
{
    return word(offsetof(SegmentHeader, previousUsed));
}

std::uint32_t SegmentReader::dropped() const
{
    return word(offsetof(SegmentHeader, dropped));
}

std::uint32_t SegmentReader::sequence() const
{
    return word(offsetof(SegmentHeader, sequence));
}

std::optional<std::string> SegmentReader::text(std::uint32_t sequence, std::size_t begin) const
{
    if (this->sequence() != sequence) {
        return std::nullopt;
    }
    const std::size_t end = used();
    std::string text(end > begin ? end - begin : 0, '\0');
    if (!readAt(m_file, text.data(), text.size(), segmentTextBegin + begin)) {
        text.clear();
    }
    std::atomic_thread_fence(std::memory_order_acquire);
    return this->sequence() == sequence ? std::optional(std::move(text)) : std::nullopt;
}

void SegmentReader::readFeatures()
{
    if (const std::uint32_t current = sequence(); current != m_featuresOf) {
        m_featuresOf = current;
        m_featuresRead = 0; // what was noted before stays good: ids keep their names
    }
    const auto count = std::min<std::size_t>(word(offsetof(SegmentHeader, featureCount)), SegmentHeader::maxFeatures);
    for (; m_featuresRead < count; ++m_featuresRead) {
        const std::size_t offset = offsetof(SegmentHeader, features) + m_featuresRead * sizeof(SegmentHeader::Feature);
        const auto feature = valueAt<SegmentHeader::Feature>(m_file, offset);
        const std::string name = textOf(feature.name);
        const auto [entry, isNew] = m_features.emplace(name, feature.id);
        if (!isNew && entry->second != feature.id) {
            entry->second = 0;
        }
    }
}

std::uint32_t SegmentReader::featureId(const std::string& name)
{
    readFeatures(); // a feature is noted before its first line, so that all lines there are have theirs noted
    const auto found = m_features.find(name);
    return found == m_features.end() ? 0 : found->second;
}

std::optional<LogLine> SegmentReader::parse(std::string_view text)
{
    std::optional<LogLine> line = parseLogLine(text);
    if (line && line->featureId == 0 && !line->featureName.empty()) {
        line->featureId = featureId(line->featureName);
    }
    return line;
}

} // namespace dorn::host
