// SPDX-License-Identifier: MIT
/// @file Child.hpp
/// A program started as a child.
#pragma once

#include <string>
#include <sys/types.h>

namespace dorn::benchmarks {

/// Its standard output goes nowhere; the log stays where the environment has it.
class Child {
public:
    /// @throws std::system_error when it cannot be started.
    explicit Child(const std::string& program);
    /// Asks the child to end, if it still runs, and waits for it.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return m_pid; }
    /// Waits until it has ended by itself.
    void waitForEnd();

private:
    pid_t m_pid = -1;
};

} // namespace dorn::benchmarks
