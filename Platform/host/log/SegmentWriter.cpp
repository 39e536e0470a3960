// SPDX-License-Identifier: MIT
#include "log/SegmentWriter.hpp"

#include "port/FilePort.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <span>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace dorn::host {

SegmentWriter::SegmentWriter(Descriptor directory, std::size_t size) : m_directory(std::move(directory)), m_size(size)
{
}

SegmentWriter::~SegmentWriter()
{
    forget();
}

void SegmentWriter::forget() noexcept
{
    for (Segment& segment : m_segments) {
        if (segment.header) {
            munmap(segment.header, m_size);
        }
        segment = {};
    }
    m_current = m_sequence = m_lastFeature = m_dropped = 0;
    m_position = 0;
}

SegmentName SegmentWriter::nameOf(std::uint32_t number) const
{
    SegmentName name = m_name;
    name.number = number;
    return name;
}

int SegmentWriter::createFile(const std::string& fileName, Descriptor& file) const
{
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
    for (;;) {
        Descriptor created(FilePort::get().open(m_directory.get(), fileName.c_str(), flags, 0600));
        if (!created) {
            return created.get();
        }
        while (flock(created.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
        struct stat status {};
        if (fstat(created.get(), &status) != 0) {
            return -errno;
        }
        if (status.st_nlink > 0) {
            file = std::move(created);
            return 0;
        }
        // Another process that clears old segments away took this one, not locked yet, for one.
    }
}

int SegmentWriter::map(Segment& segment) const
{
    if (const int error = FilePort::get().reserve(segment.file.get(), static_cast<off_t>(step)); error != 0) {
        return error;
    }
    void* const address = mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, segment.file.get(), 0);
    if (address == MAP_FAILED) {
        return -errno;
    }
    auto* const header = new (address) SegmentHeader{};
    header->version = SegmentHeader::expectedVersion;
    header->pid = m_name.pid;
    header->start = m_name.start;
    segment.header = header;
    segment.reserved = step;
    return 0;
}

int SegmentWriter::create(std::uint32_t number)
{
    const std::string fileName = segmentFileName(nameOf(number));
    Segment segment;
    if (const int error = createFile(fileName, segment.file); error != 0) {
        return error;
    }
    if (const int error = map(segment); error != 0) {
        FilePort::get().remove(m_directory.get(), fileName.c_str());
        return error;
    }
    m_segments[number] = std::move(segment);
    return 0;
}

void SegmentWriter::begin(std::uint32_t number)
{
    const std::size_t previousUsed = m_sequence == 0 ? 0 : m_position - segmentTextBegin;
    m_current = number;
    m_position = segmentTextBegin;
    m_lastFeature = 0;
    header().used.store(0, std::memory_order_relaxed);
    header().previousUsed.store(static_cast<std::uint32_t>(previousUsed), std::memory_order_relaxed);
    header().featureCount.store(0, std::memory_order_relaxed);
    header().sequence.store(m_sequence, std::memory_order_release);
    std::atomic_thread_fence(std::memory_order_seq_cst); // the new sequence is seen before any new text
    header().magic = SegmentHeader::expectedMagic;       // makes a new file a segment
    noteDropped(m_dropped);
}

int SegmentWriter::open(const SegmentName& name)
{
    m_name = name;
    const int error = create(0);
    if (error == 0) {
        begin(0);
    }
    return error;
}

int SegmentWriter::turn()
{
    const std::uint32_t other = (m_current + 1) % segmentsPerProcess;
    if (!m_segments[other].header) {
        if (const int error = create(other); error != 0) {
            return error;
        }
    }
    ++m_sequence;
    begin(other);
    return 0;
}

int SegmentWriter::rename(const std::string& eeName)
{
    SegmentName renamed = m_name;
    renamed.eeName = eeName;
    for (; renamed.number < segmentsPerProcess && m_segments[renamed.number].header; ++renamed.number) {
        const std::string from = segmentFileName(nameOf(renamed.number));
        const int error = FilePort::get().rename(m_directory.get(), from.c_str(), m_directory.get(),
                                                 segmentFileName(renamed).c_str());
        if (error != 0) {
            return error;
        }
    }
    m_name.eeName = eeName;
    return 0;
}

int SegmentWriter::reserve(std::size_t size)
{
    Segment& segment = m_segments[m_current];
    const std::size_t needed = (m_position + size + step - 1) / step * step;
    const int error = FilePort::get().reserve(segment.file.get(), static_cast<off_t>(needed));
    if (error == 0) {
        segment.reserved = needed;
    }
    return error;
}

void SegmentWriter::append(std::string_view line) noexcept
{
    std::memcpy(reinterpret_cast<char*>(&header()) + m_position, line.data(), line.size());
    m_position += line.size();
    // Sequentially consistent, so that a reader that is about to sleep sees the line or is seen by the writer.
    header().used.store(static_cast<std::uint32_t>(m_position - segmentTextBegin), std::memory_order_seq_cst);
}

void SegmentWriter::noteFeature(std::uint32_t id, const std::array<char, 64>& name) noexcept
{
    if (id == m_lastFeature) {
        return;
    }
    m_lastFeature = id;
    SegmentHeader& head = header();
    const std::uint32_t count = head.featureCount.load(std::memory_order_relaxed);
    const auto isThis = [id](const SegmentHeader::Feature& feature) { return feature.id == id; };
    const std::span noted(head.features.data(), count);
    if (count == SegmentHeader::maxFeatures || std::any_of(noted.begin(), noted.end(), isThis)) {
        return;
    }
    head.features[count] = {id, name};
    head.featureCount.store(count + 1, std::memory_order_release);
}

void SegmentWriter::noteDropped(std::uint32_t count) noexcept
{
    m_dropped = count;
    if (isOpen()) {
        header().dropped.store(count, std::memory_order_relaxed);
    }
}

} // namespace dorn::host
