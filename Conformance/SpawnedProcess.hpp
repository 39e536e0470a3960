// SPDX-License-Identifier: MIT
/// @file SpawnedProcess.hpp
/// A copy of the running program as a child.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::conformance {

/// A descriptor that is closed with this object.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_number(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;

    int number() const { return m_number; }
    int release();
    void close();

private:
    int m_number;
};

/// Both ends of a pipe; no child inherits them. @throws std::system_error
struct Pipe {
    Pipe();
    Descriptor readEnd;
    Descriptor writeEnd;
};

/// Which descriptor of the parent a child gets as which.
struct Inheritance {
    int own;
    int childs;
};

/// Starts the running program once more. @throws std::system_error
/// @param isLeader whether it leads a process group of its own, so that all that it starts can be killed with it
pid_t spawnSelf(const std::vector<std::string>& arguments, const std::vector<Inheritance>& descriptors, bool isLeader);

/// Has the system kill this process when the one that has started it ends.
void endWithParent();

/// Waits for a child. @return its status, as `waitpid` gives it.
int waitForChild(pid_t child);

} // namespace dorn::conformance
