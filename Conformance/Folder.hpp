// SPDX-License-Identifier: MIT
/// @file Folder.hpp
/// A directory of the target for one rule.
#pragma once

#include <string>

namespace dorn::conformance {

/// Made below `--directory`, and removed with all that is in it at the end of this object.
class Folder {
public:
    /// Ends the rule as broken when the directory cannot be made.
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// The target's path of a file in it.
    std::string path(const std::string& name) const { return m_path + "/" + name; }
    /// Where that file really lies, for what only the system can do: links and pipes.
    std::string realPath(const std::string& name) const;

private:
    std::string m_path;
};

/// Where a path of the target really lies. Ends the rule as broken when the platform does not tell.
std::string boardPath(const std::string& path);
/// Writes a file of the target. Ends the rule as broken when it cannot be written.
void writeFile(const std::string& path, const std::string& content);
/// The content of a file of the target. Ends the rule as broken when it cannot be read.
std::string readFile(const std::string& path);

} // namespace dorn::conformance
