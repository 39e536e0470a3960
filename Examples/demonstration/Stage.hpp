// SPDX-License-Identifier: MIT
/// @file Stage.hpp
/// Where the steps of the demonstration take place.
#pragma once

#include "AaConfigRad.h"
#include "AwaitedLog.hpp"
#include "Board.hpp"
#include "TestNode.hpp"
#include "node/EeTable.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace dorn::demonstration {

/// A board of its own with its files, and what there is to be seen of it. What does not come about in time is a
/// std::runtime_error that says so.
class Stage {
public:
    Stage();

    testkit::TestNode& node() { return m_node; }
    Board& board() { return m_board; }
    AwaitedLog& log() { return m_log; }

    /// Starts a service, and waits until it waits for messages.
    void start(const std::string& name, const std::vector<std::string>& arguments = {});
    /// A service as the node's list has it; nothing when it is not on it.
    std::optional<host::EeInfo> find(const std::string& name) const;
    /// Sets an R&D parameter.
    void setSwitch(TAaConfigRadId id, std::uint32_t value);
    /// Waits for a line of the log that ends so, and shows it.
    void awaitLine(const std::string& ending);

private:
    bool isWaiting(const std::string& name) const;

    testkit::TestNode m_node{{.nodeId = std::nullopt, .log = "file", .logLevel = std::nullopt}};
    Board m_board;
    AwaitedLog m_log;
};

/// The whole content of a file of this machine; empty when it cannot be read.
std::string contentOf(const std::filesystem::path& path);

} // namespace dorn::demonstration
