// SPDX-License-Identifier: MIT
/// @file TestNode.hpp
/// A node of its own for one test: an empty board that nobody else sees.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace dorn::testkit {

/// What a TestNode does other than usual.
struct TestNodeOptions {
    std::optional<std::uint16_t> nodeId = std::nullopt; ///< `DORN_NID`; the default node id without one
    std::string log = "none";                           ///< `DORN_LOG`, for those who want to look on
    std::optional<std::string> logLevel = std::nullopt; ///< `DORN_LOG_LEVEL`, so that lines below Warning are kept
};

/// Makes a private run directory and board root and points the environment of this process, and so of every child that
/// it starts, at them. Signals that ask a process to end do so, even if the test program was started with them ignored
/// (`nohup`, a shell's background). At its end everything that the process has opened on the node is closed,
/// environment and signals are as they were before, and the directories are gone.
///
/// 1. Make it first in a test, in the thread that runs the test and with no EU running.
/// 2. Put files on the board with writeBoardFile(), start services, send messages.
/// 3. End all EUs and children before it ends; ServiceUnderTest, Peer and Process do that by themselves.
///
/// The one that was made last is in use. Tests that run at once in several processes do not meet.
class TestNode {
public:
    /// @throws std::system_error when the directories cannot be made.
    explicit TestNode(const TestNodeOptions& options = {});
    ~TestNode();
    TestNode(const TestNode&) = delete;
    TestNode& operator=(const TestNode&) = delete;

    /// Value of `DORN_RUN_DIR`.
    std::string runDirectory() const { return m_directory + "/run"; }
    /// The node's own directory below the run directory: sockets and shared stores. Made when it is
    /// missing.
    std::string nodeDirectory() const;
    /// Value of `DORN_ROOT`.
    std::string boardRoot() const { return m_directory + "/root"; }
    /// Where @p targetPath, absolute as on the target, lies on this machine.
    std::string boardPath(const std::string& targetPath) const;

    /// Writes a file of the board, with the directories above it, in place of what was there.
    /// @throws std::system_error when that fails.
    void writeBoardFile(const std::string& targetPath, const std::string& content) const;
    /// The content of a file of the board. @throws std::system_error when it cannot be read.
    std::string readBoardFile(const std::string& targetPath) const;

private:
    void setVariable(const char* name, const std::optional<std::string>& value);
    void restoreVariables();
    void listenToSignals();

    std::string m_directory;
    std::vector<std::pair<std::string, std::optional<std::string>>> m_previous; ///< environment variables as they were
    std::vector<int> m_ignoredSignals;                                          ///< that are heard meanwhile
};

} // namespace dorn::testkit
