// SPDX-License-Identifier: MIT
/// @file ServiceProcess.hpp
/// The process of a service, as who supervises it sees it.
#pragma once

#include "board/BoardDescription.hpp"

#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dorn::tool {

/// A process that has been started. At the end of this object it is killed if it still runs. Nothing here waits.
class ServiceProcess {
public:
    virtual ~ServiceProcess() = default;

    virtual pid_t pid() const = 0;
    /// Sends a signal; SIGKILL also to what the process has started itself. Does nothing when the process has ended.
    virtual void signal(int number) = 0;
    /// Its exit status, 0 to 255, or the negative number of the signal that ended it; nothing while it runs.
    virtual std::optional<int> status() = 0;
    /// Whether a signal has stopped it: it lives, but does nothing.
    virtual bool isStopped() const = 0;
    /// Whole lines that it has written since the last call, to standard output or error. Of a flood only a part is
    /// kept. After its end also a line without an end.
    virtual std::vector<std::string> takeLines() = 0;
    /// What becomes readable when it writes something or ends.
    virtual std::vector<int> descriptors() const = 0;
};

/// Starts processes.
class ServiceLauncher {
public:
    virtual ~ServiceLauncher() = default;

    /// @throws std::system_error when the service cannot be started.
    virtual std::unique_ptr<ServiceProcess> launch(const ServiceDescription& service) = 0;
};

} // namespace dorn::tool
