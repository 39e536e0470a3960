// SPDX-License-Identifier: MIT
/// @file BoardDescription.hpp
/// Which services a board runs, and how: an XML file, described in Docs/board-run.md.
#pragma once

#include "board/RestartRecord.hpp"
#include "port/Clock.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace dorn::tool {

/// A variable of the environment.
using Variable = std::pair<std::string, std::string>;

/// From when on a service counts as running.
enum class Readiness {
    State, ///< it publishes that it waits for messages, or a later state
    Start  ///< it has been started: a program that is no service of the library
};

/// A service that is to run.
struct ServiceDescription {
    std::string name;
    std::string program; ///< path
    std::vector<std::string> arguments = {};
    std::vector<Variable> environment = {};
    RestartPolicy restart = {};
    std::vector<std::size_t> after = {}; ///< places of the services, listed above, that have to run first
    Readiness ready = Readiness::State;
    int goodStatus = 1; ///< exit status of a good end: what Service::Startup() returns then
    host::Nanoseconds endWithin = std::chrono::seconds(3); ///< from being asked to end to being killed
};

/// A board that is to run.
struct BoardDescription {
    std::string name;
    std::string tree = {};  ///< path of the device tree; empty: what the environment says
    std::string root = {};  ///< path of the board root; empty: what the environment says
    std::string files = {}; ///< path of a folder whose files are put on the board at each start; empty for none
    std::vector<Variable> environment = {};
    std::vector<ServiceDescription> services = {}; ///< in the order in which they start
};

/// Reads a description. Paths in it are relative to its folder; a program without a slash lies in @p programs, or, when
/// it is not there, in `libexec/dorn` beside that folder.
/// @param path as a person named it; complaints name it so
/// @param programs folder
/// @throws Failure with every complaint on a line of its own, each as "file:line: what is wrong".
BoardDescription readBoardDescription(const std::string& path, const std::string& programs);

} // namespace dorn::tool
