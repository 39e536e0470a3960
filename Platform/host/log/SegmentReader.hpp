// SPDX-License-Identifier: MIT
/// @file SegmentReader.hpp
/// Reads a segment that another process may be writing, or that is damaged.
#pragma once

#include "log/LogDirectory.hpp"
#include "log/LogLine.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace dorn::host {

/// One segment, open for reading. Believes nothing that the file says before it has checked it.
class SegmentReader {
public:
    /// @return nothing when the file is gone, or no segment or not that of its name.
    static std::optional<SegmentReader> open(const Descriptor& directory, const SegmentFile& file);

    /// Which filling this is. Changes before lines are written over: what was read before it changed is good.
    std::uint32_t sequence() const;
    /// Bytes of whole lines by now.
    std::size_t used() const;
    /// Bytes that the filling before had in the end.
    std::size_t previousUsed() const;
    /// Lines that the process had dropped when it last wrote here.
    std::uint32_t dropped() const;
    bool isHeld() const { return host::isHeld(m_file); }

    /// The lines from @p begin to the end.
    /// @return nothing when this is not, or not any more, the filling @p sequence
    std::optional<std::string> text(std::uint32_t sequence, std::size_t begin) const;
    /// Takes a line apart. @return nothing when it is none.
    std::optional<LogLine> parse(std::string_view line);

private:
    explicit SegmentReader(Descriptor file) : m_file(std::move(file)) {}
    std::uint32_t word(std::size_t offset) const;
    std::uint32_t featureId(const std::string& name);
    void readFeatures();

    Descriptor m_file;
    std::uint32_t m_featuresRead = 0;
    std::uint32_t m_featuresOf = 0;                  ///< sequence of the filling whose features these are
    std::map<std::string, std::uint32_t> m_features; ///< ids by name; 0 where two have one name
};

} // namespace dorn::host
