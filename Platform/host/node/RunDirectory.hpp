// SPDX-License-Identifier: MIT
/// @file RunDirectory.hpp
/// The directory in which the processes of one node meet: its sockets and shared stores.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace dorn::host {

/// Why the platform cannot work in this environment; the text is for the person who set it up.
class EnvironmentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The node id that `DORN_NID` gives: decimal or 0x..., 0 to 65535; 0x0F01 when it is not set.
/// @throws EnvironmentError when it is not such a number.
std::uint16_t nodeIdFromEnvironment();

/// `<run directory>/<node id in four hexadecimal digits>`: mode 0700, the caller's own, reached through no symbolic
/// link.
///
/// The run directory is `DORN_RUN_DIR`, else `$XDG_RUNTIME_DIR/dorn`, else `/run/dorn`.
class RunDirectory {
public:
    /// Opens the directory of this process's node, as the environment gives it, and makes it when it is missing.
    /// @throws EnvironmentError when it cannot be made or must not be trusted. Use it through `PerNode<RunDirectory>`.
    RunDirectory();

    /// Opens, and makes when missing, the node's directory below @p runPath.
    RunDirectory(const std::string& runPath, std::uint16_t nodeId);
    ~RunDirectory();
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;

    int descriptor() const { return m_descriptor; }
    std::uint16_t nodeId() const { return m_nodeId; }
    const std::string& path() const { return m_path; }

    /// A path to @p name in this directory that is short whatever the directory is called (a socket name has 107
    /// characters).
    std::string shortPath(const std::string& name) const;

    /// Makes the directory @p name inside this one unless it is there, mode 0700. @throws EnvironmentError
    void makeSubdirectory(const std::string& name) const;

private:
    std::string m_path;
    std::uint16_t m_nodeId;
    int m_descriptor = -1;
};

/// The path that the environment gives for the run directory.
std::string runPathFromEnvironment();

} // namespace dorn::host
