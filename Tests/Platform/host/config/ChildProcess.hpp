// SPDX-License-Identifier: MIT
/// @file ChildProcess.hpp
/// A second process of a test's node.
#pragma once

#include <functional>
#include <sys/types.h>

namespace dorn::host::test {

/// Runs a function in a child that begins as a copy of this process, and keeps step with it.
///
/// It must be made before this process uses anything of the node, and while it has one thread. The child ends with the
/// function, without any cleaning up, as a service that is killed does.
class ChildProcess {
public:
    /// The child's side.
    class Parent {
    public:
        Parent(int in, int out) : m_in(in), m_out(out) {}
        /// Lets the parent's await() return.
        void tell();
        /// Waits for the parent's tell(). @return false when the parent has gone.
        bool await();

    private:
        int m_in;
        int m_out;
    };

    explicit ChildProcess(const std::function<void(Parent&)>& work);
    /// Kills the child if it still lives.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Lets the child's await() return.
    void tell();
    /// Waits for the child's tell(). @return false when it has not come within 20 s, or the child has ended.
    [[nodiscard]] bool await();
    /// Kills the child and waits for its end.
    void kill();
    /// Waits for the child's end. @return whether it ended by itself and none of its expectations failed.
    [[nodiscard]] bool hasSucceeded();

private:
    pid_t m_pid = -1;
    int m_in = -1;
    int m_out = -1;
};

} // namespace dorn::host::test
