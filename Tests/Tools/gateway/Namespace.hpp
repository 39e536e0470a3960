// SPDX-License-Identifier: MIT
/// @file Namespace.hpp
/// A host of its own, as far as the network goes.
#pragma once

#include "Process.hpp"

#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::gateway::test {

/// A network namespace that lives as long as a process in it. Who is not root makes a user namespace around the first
/// one, and all others inside that one.
class Namespace {
public:
    /// @param within command, if any, that makes it inside another one; see enter()
    explicit Namespace(std::vector<std::string> within = {});

    /// Waits until it is there. @return false when it cannot be made
    bool isThere() const { return m_holder->waitForOutput("inside"); }
    std::string whyNot() const { return m_holder->standardError(); }

    /// The beginning of a command that runs inside.
    std::vector<std::string> enter() const;
    /// The process by which others know it.
    std::string process() const { return std::to_string(m_holder->pid()); }

    /// Runs a command inside. @return what it complained about; empty when it was done
    std::string run(const std::vector<std::string>& command) const;
    /// Runs a command inside. @return its standard output
    std::string outputOf(const std::vector<std::string>& command) const;

private:
    std::unique_ptr<testkit::Process> startInside(const std::vector<std::string>& command) const;

    std::unique_ptr<testkit::Process> m_holder;
};

} // namespace dorn::gateway::test
