// SPDX-License-Identifier: MIT
/// @file OtherProcess.hpp
/// Another process of the node, for rules about what processes share.
#pragma once

#include "SpawnedProcess.hpp"

#include <string>

namespace dorn::conformance {

/// The running program once more, in a role. It is killed at the end of this object.
///
/// Both talk in lines: it prints one with say() when it has got somewhere, and waits for one with awaitWord().
class OtherProcess {
public:
    explicit OtherProcess(const std::string& role, const std::vector<std::string>& arguments = {});
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Waits for its next line. Ends the rule as broken when it ends, or says nothing within the bound.
    std::string hear();
    /// Waits for its next line, which is to be @p line.
    void expectToHear(const std::string& line);
    /// Has its awaitWord() return.
    void tell();
    /// Sends it a signal.
    void signal(int number) const;
    /// Waits until it has ended. Ends the rule as broken when it has not within the bound.
    /// @return its exit status, or the negative number of the signal that has ended it.
    int waitForEnd();

private:
    std::string m_role;
    Pipe m_input;
    Pipe m_output;
    pid_t m_pid;
    std::string m_heard;
    bool m_isReaped = false;
};

/// In a role: prints a line for the other side's hear().
void say(const std::string& line);
/// In a role: waits for the other side's tell().
void awaitWord();

} // namespace dorn::conformance
