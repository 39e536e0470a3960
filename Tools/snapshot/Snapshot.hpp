// SPDX-License-Identifier: MIT
/// @file Snapshot.hpp
/// Everything about a node in one archive.
#pragma once

#include "port/Clock.hpp"
#include "text/Json.hpp"

#include <string>
#include <vector>

namespace dorn::tool {

/// What a snapshot has come to.
struct SnapshotReport {
    Json manifest;
    std::vector<std::string> missing; ///< what could not be had, in words
};

/// How long the parts of a snapshot may take, from its begin; the archive is written behind them, within answerLimit.
struct SnapshotTimes {
    host::Deadline stored;   ///< processes have stored their files
    host::Deadline removed;  ///< and removed them
    host::Deadline answered; ///< this command's verbs have answered
};

/// "dorn-snapshot-0f01-20261121T091801Z"
std::string snapshotName(std::uint16_t nodeId, host::Nanoseconds wall);

/// Takes a snapshot of the environment's node and writes it to @p path: the folder @p name with the answers of this
/// command's verbs, below files/ the troubleshooting files under their paths, and manifest.json, which tells what came
/// of each. What crashes or hangs is missing, and nothing else.
/// @throws Failure when the archive cannot be written.
SnapshotReport takeSnapshot(const std::string& path, const std::string& name, const SnapshotTimes& times);

} // namespace dorn::tool
