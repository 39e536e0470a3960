// SPDX-License-Identifier: MIT
/// @file Board.hpp
/// The services of the demonstration board, as processes.
#pragma once

#include "Process.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace dorn::demonstration {

/// Starts services from the directory of this program and ends them with it.
class Board {
public:
    /// Starts `Dorn<name>Exe`, in place of one that has ended. @throws std::system_error
    testkit::Process& start(const std::string& name, const std::vector<std::string>& arguments = {});
    /// A service that was started.
    testkit::Process& service(const std::string& name) { return *m_services.at(name); }
    const testkit::Process& service(const std::string& name) const { return *m_services.at(name); }
    /// The services that run.
    std::vector<std::string> running() const;

    /// Waits until all have ended. @return their exit statuses, negative for a signal.
    std::map<std::string, int> awaitEnd();
    /// Asks all that run to end, as SIGTERM does, and waits for them.
    /// @return their exit statuses, negative for a signal. A service that ended well has 1.
    std::map<std::string, int> end();

    /// Path of a service's executable, beside this program.
    static std::string program(const std::string& name);
    /// Path of the operator's command, beside this program.
    static std::string command();
    /// Where the board's files lie in the source tree.
    static std::filesystem::path files();
    /// The device tree of the board: the Tarn board that works alone.
    static std::string description();

private:
    std::map<std::string, std::unique_ptr<testkit::Process>> m_services;
};

} // namespace dorn::demonstration
