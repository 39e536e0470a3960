// SPDX-License-Identifier: MIT
/// @file SegmentWriter.hpp
/// The segments that a process is writing.
#pragma once

#include "log/LogSegment.hpp"
#include "port/Descriptor.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::host {

/// Writes one process's segments (LogSegment.hpp) through memory mappings. Not for several threads at once. Functions
/// that return an int return 0 or -`errno`.
class SegmentWriter {
public:
    /// Room is taken from the file system in steps of this many bytes.
    static constexpr std::size_t step = std::size_t{64} * 1024;

    /// @param size greatest size of a segment's file; a multiple of step
    SegmentWriter(Descriptor directory, std::size_t size);
    ~SegmentWriter();
    SegmentWriter(const SegmentWriter&) = delete;
    SegmentWriter& operator=(const SegmentWriter&) = delete;

    bool isOpen() const { return m_segments[0].header != nullptr; }
    /// Creates the first segment. @param name says whose; its number does not count
    int open(const SegmentName& name);
    /// Gives the files another EE name.
    int rename(const std::string& eeName);
    /// Closes the segments without touching what is shared with the process that made them: for the child of a fork.
    void forget() noexcept;

    /// Whether @p size bytes fit into the segment without another step.
    bool hasRoom(std::size_t size) const { return size <= m_segments[m_current].reserved - m_position; }
    /// Whether @p size bytes fit into the segment at all.
    bool canHold(std::size_t size) const { return size <= m_size - m_position; }
    /// Takes room for @p size bytes, which the segment can hold.
    int reserve(std::size_t size);
    /// Goes on in the other segment, whose lines are lost; creates it when there is none.
    int turn();

    /// Appends a line for which there is room and shows it to readers.
    void append(std::string_view line) noexcept;
    /// Has readers know the id of a feature whose name is in lines to come.
    void noteFeature(std::uint32_t id, const std::array<char, 64>& name) noexcept;
    /// Has readers know how many lines have been dropped so far.
    void noteDropped(std::uint32_t count) noexcept;

private:
    struct Segment {
        Descriptor file;
        SegmentHeader* header = nullptr; ///< the mapping; null while there is no such segment
        std::size_t reserved = 0;        ///< bytes of the file that have room
    };

    int create(std::uint32_t number);
    int createFile(const std::string& fileName, Descriptor& file) const;
    int map(Segment& segment) const;
    void begin(std::uint32_t number);
    SegmentName nameOf(std::uint32_t number) const;
    SegmentHeader& header() const { return *m_segments[m_current].header; }

    const Descriptor m_directory;
    const std::size_t m_size;
    SegmentName m_name;
    std::array<Segment, segmentsPerProcess> m_segments;
    std::uint32_t m_current = 0;
    std::uint32_t m_sequence = 0;
    std::size_t m_position = 0; ///< end of the lines in the current segment's file
    std::uint32_t m_lastFeature = 0;
    std::uint32_t m_dropped = 0;
};

} // namespace dorn::host
