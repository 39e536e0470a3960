// SPDX-License-Identifier: MIT
/// @file RotatingFile.hpp
/// An ordinary log file of limited size, which several processes may write at once.
#pragma once

#include "log/DropReport.hpp"
#include "port/Descriptor.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace dorn::host {

/// How much an ordinary log file takes.
struct RotationLimits {
    std::size_t size = std::size_t{8} * 1024 * 1024; ///< bytes after which a new file is begun
    unsigned older = 3;                              ///< full files that are kept: PATH.1, the latest, to PATH.3
};

/// Appends whole lines, each with one `write`, so that the lines of several processes do not mix. The process that
/// makes the file full renames it; the others notice with their next line. Lines for which there is no room are
/// dropped, as DropReport tells. Not for several threads at once.
class RotatingFile {
public:
    /// Opens or creates the file. @throws EnvironmentError
    explicit RotatingFile(const std::string& path, const RotationLimits& limits = {});

    /// Writes a line, which ends with its line feed.
    void write(std::string_view line);

private:
    int append(std::string_view data);
    void rotateIfFull();
    void rotate();
    std::string olderPath(unsigned number) const;
    bool isCurrent() const;

    const std::string m_path;
    const RotationLimits m_limits;
    Descriptor m_file;
    DropReport m_drops;
    bool m_isMidLine = false; ///< the last line was written in part only
};

} // namespace dorn::host
