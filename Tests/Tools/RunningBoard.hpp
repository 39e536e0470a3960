// SPDX-License-Identifier: MIT
/// @file RunningBoard.hpp
/// Board descriptions for tests, and the processes that run by them.
#pragma once

#include "Bound.hpp"
#include "DornCommand.hpp"
#include "TestNode.hpp"

#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace dorn::tool {

/// Writes a description with @p services and gives its path.
std::string boardFile(const testkit::TestNode& node, const std::string& services);

/// A service EchoS that is restarted at once; it ends well with status 0.
std::string echoElement();
/// A program that is no service: a shell script.
std::string scriptElement(const std::string& name, const std::string& script, const std::string& parts = "");

/// The process of a service that lives and waits for messages; nothing when there is none.
std::optional<pid_t> waitingProcess(const std::string& service);
/// Waits until a service waits for messages, in another process than @p other. @return 0 when it does not come to that.
pid_t awaitWaiting(const std::string& service, pid_t other = 0);
/// Waits until something is so. @return false when it does not come to that within a generous bound.
bool comesTrue(const std::function<bool()>& isSo);
/// Whether a process has ended.
bool hasEnded(pid_t pid);

} // namespace dorn::tool
