// SPDX-License-Identifier: MIT
/// @file LogDirectory.hpp
/// The directory `log` of a node's run directory: whose segments lie there.
#pragma once

#include "log/LogSegment.hpp"
#include "port/Descriptor.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace dorn::host {

class RunDirectory;

constexpr const char* logDirectoryName = "log";

/// A segment's file.
struct SegmentFile {
    std::string fileName;
    SegmentName name;
};

/// The segments of one process in the order of their numbers; at least one.
struct ProcessSegments {
    std::vector<SegmentFile> files;
    const SegmentFile& first() const { return files.front(); }
};

/// Opens the node's log directory and makes it when it is missing. @throws EnvironmentError
Descriptor openLogDirectory(const RunDirectory& node);

/// The processes that have segments in a directory, the one that started first first. Whatever else lies there is
/// passed over.
std::vector<ProcessSegments> listLogs(const Descriptor& directory);

/// Opens a segment for reading. @return none when it is gone, no ordinary file or a symbolic link.
Descriptor openSegment(const Descriptor& directory, const std::string& fileName);
/// Whether the process whose first segment this is still lives.
bool isHeld(const Descriptor& segment);

/// How many processes that have ended keep their segments.
struct LogPruning {
    std::size_t perName = 3;     ///< of those with one EE name, the latest
    std::size_t altogether = 64; ///< of all, the latest
};

/// Removes the segments of processes that have ended, all but the latest.
void pruneLogs(const Descriptor& directory, const LogPruning& keep = {});

} // namespace dorn::host
