// SPDX-License-Identifier: MIT
/// @file Half.hpp
/// One half of a redundant pair on this machine: a node with its own run directory and board root.
#pragma once

#include "Process.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dorn::pair {

/// What `dorn` came to on a half.
struct CommandResult {
    int status;
    std::string answer;
    std::string remarks;
};

/// Starts processes on a node of its own and ends them with it.
///
/// The environment of this program says where a process runs: halves are used by one thread.
class Half {
public:
    /// @param name for people: "A"
    /// @param directory where its run directory and its board root lie; made when missing
    Half(std::string name, std::uint16_t node, std::filesystem::path directory);

    const std::string& name() const { return m_name; }
    std::uint16_t node() const { return m_node; }
    /// "0x0F01"
    std::string nodeText() const;
    /// Where a file of its board lies on this machine.
    std::filesystem::path boardFile(const std::string& targetPath) const;

    /// Starts the gateway. @throws std::system_error
    void startGateway();
    /// Starts `Dorn<name>Exe`, in place of one that has ended. @throws std::system_error
    void startService(const std::string& name, const std::vector<std::string>& arguments);
    /// Begins to follow the log, which is there already.
    void followLog();

    /// Runs `dorn` to its end.
    CommandResult command(const std::vector<std::string>& arguments) const;
    /// The answer of `dorn`. @throws std::runtime_error when its status is not 0.
    std::string ask(const std::vector<std::string>& arguments) const;
    /// Asks again and again. @return the answer when its status is 0 and it contains @p text.
    /// @throws std::runtime_error when it does not within a bound.
    std::string askUntil(const std::vector<std::string>& arguments, const std::string& text) const;
    /// What the log has said so far is looked at no more.
    void passLog();
    /// Waits for a line of the log that contains @p text; the first one since followLog() or passLog().
    /// @throws std::runtime_error when none comes within a bound.
    std::string awaitLine(const std::string& text) const;

    /// Everything that runs on it ends at once, as when its power goes.
    void die();
    /// Asks everything to end, the services before the gateway.
    /// @throws std::runtime_error when one of them does not end well.
    void end();

private:
    void enter() const;
    std::string lastWords() const;
    void endWell(const std::string& name, int wellStatus);

    std::string m_name;
    std::uint16_t m_node;
    std::filesystem::path m_directory;
    std::map<std::string, std::unique_ptr<testkit::Process>> m_processes;
    std::unique_ptr<testkit::Process> m_log;
    std::size_t m_logPassed = 0; ///< bytes of the log, whole lines
};

} // namespace dorn::pair
