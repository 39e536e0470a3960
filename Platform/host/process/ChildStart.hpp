// SPDX-License-Identifier: MIT
/// @file ChildStart.hpp
/// Starting a program as a child that does not outlive its parent.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::host {

/// How a child is to be started.
struct ChildStart {
    std::string program; ///< path
    std::vector<std::string> arguments;
    /// "NAME=value", all that the child gets.
    std::vector<std::string> environment;
    int output; ///< descriptor that becomes its standard output
    int error;  ///< descriptor that becomes its standard error
    /// Whether it leads a process group of its own, so that Ctrl-C in the terminal passes it by.
    bool hasOwnGroup = false;
};

/// The environment of this process in the form of ChildStart::environment.
std::vector<std::string> ownEnvironment();

/// Starts a child with nothing on its standard input, no signal blocked and SIGPIPE as a process expects it. It is
/// killed when the thread that called this ends, however that comes. Descriptors that are to stay out of it are
/// close-on-exec.
/// @return its process id; the caller reaps it.
/// @throws std::system_error when it cannot be started; no child is left then.
pid_t startChild(const ChildStart& start);

} // namespace dorn::host
