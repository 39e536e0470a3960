// SPDX-License-Identifier: MIT
/// @file ChildServiceProcess.hpp
/// Services as children of this process.
#pragma once

#include "board/ServiceProcess.hpp"
#include "port/Descriptor.hpp"

namespace dorn::tool {

/// Starts services as children that are killed when the thread that starts them ends. Each leads a process group of its
/// own.
class ChildServiceLauncher : public ServiceLauncher {
public:
    /// @param environment variables in front of those of this process and behind those of a service's own
    explicit ChildServiceLauncher(std::vector<Variable> environment) : m_environment(std::move(environment)) {}

    std::unique_ptr<ServiceProcess> launch(const ServiceDescription& service) override;

private:
    std::vector<Variable> m_environment;
};

/// A child.
class ChildServiceProcess : public ServiceProcess {
public:
    /// @param pid a child that has not been reaped, and leads a process group
    /// @param output what it writes, not blocking
    ChildServiceProcess(pid_t pid, host::Descriptor output);
    ~ChildServiceProcess() override;

    pid_t pid() const override { return m_pid; }
    void signal(int number) override;
    std::optional<int> status() override;
    bool isStopped() const override;
    std::vector<std::string> takeLines() override;
    std::vector<int> descriptors() const override;

private:
    bool readPart();

    pid_t m_pid;
    host::Descriptor m_end; ///< readable when the child has ended
    host::Descriptor m_output;
    std::string m_text; ///< of a line that has not ended
    std::optional<int> m_status;
};

} // namespace dorn::tool
