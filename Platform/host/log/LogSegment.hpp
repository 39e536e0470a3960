// SPDX-License-Identifier: MIT
/// @file LogSegment.hpp
/// The files in which the processes of a node keep their lines.
///
/// A process has two segments, files of fixed greatest size, which it fills in turn: when one is full, the other, which
/// holds the oldest lines, is begun anew. A segment is a page of SegmentHeader and then plain text lines.
///
/// - `used` is raised after a line is complete. Whoever reads up to it sees whole lines only, also when the writer was
///   killed in the middle of the next.
/// - `sequence` counts the fillings of both segments. It changes before the first old line is written over; what was
/// read
///   is good if it is still the same afterwards.
/// - The writer holds an `flock` on its first segment as long as it lives.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dorn::host {

/// First page of a segment. Zero where nothing has been written.
struct SegmentHeader {
    /// A feature that has a name and has printed here, so that readers learn the id.
    struct Feature {
        std::uint32_t id;
        std::array<char, 64> name;
    };
    static constexpr std::size_t maxFeatures = 56;
    static constexpr std::array<char, 8> expectedMagic{'D', 'o', 'r', 'n', 'L', 'o', 'g', '\n'};
    static constexpr std::uint32_t expectedVersion = 1;

    std::array<char, 8> magic;
    std::uint32_t version;
    std::int32_t pid;
    std::int64_t start; ///< when the process opened its log: wall clock, ns
    std::atomic<std::uint32_t> sequence;
    std::atomic<std::uint32_t> used;         ///< bytes of whole lines
    std::atomic<std::uint32_t> previousUsed; ///< what `used` was in the end in the filling before
    std::atomic<std::uint32_t> dropped;      ///< lines that the process could not write so far
    std::atomic<std::uint32_t> featureCount;
    std::array<Feature, maxFeatures> features;
};
constexpr std::size_t segmentTextBegin = 4096;
static_assert(sizeof(SegmentHeader) <= segmentTextBegin);
static_assert(std::atomic<std::uint32_t>::is_always_lock_free, "shared between processes");

/// How many segments a process has.
constexpr std::uint32_t segmentsPerProcess = 2;

/// What a segment's file name says: `<EE name>.<process id>.<start>.<0 or 1>.log`.
struct SegmentName {
    std::string eeName;
    std::int32_t pid = 0;
    std::int64_t start = 0;
    std::uint32_t number = 0;

    bool operator==(const SegmentName&) const = default;
};
std::string segmentFileName(const SegmentName& name);
/// @return whether @p fileName is such a name.
bool parseSegmentFileName(std::string_view fileName, SegmentName& name);

} // namespace dorn::host
