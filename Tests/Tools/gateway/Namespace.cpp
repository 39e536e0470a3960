// SPDX-License-Identifier: MIT
#include "Namespace.hpp"

#include <unistd.h>

namespace dorn::gateway::test {

using testkit::Process;

namespace {

void append(std::vector<std::string>& command, const std::vector<std::string>& words)
{
    command.insert(command.end(), words.begin(), words.end());
}

std::unique_ptr<Process> start(const std::vector<std::string>& command)
{
    return std::make_unique<Process>(command.front(), std::vector<std::string>(command.begin() + 1, command.end()));
}

} // namespace

Namespace::Namespace(std::vector<std::string> within)
{
    const bool isUser = geteuid() != 0 && within.empty();
    append(within, {"/usr/bin/env", "unshare"});
    if (isUser) {
        append(within, {"-U", "-r"});
    }
    append(within, {"-n", "sh", "-c", "echo inside; exec sleep 600"});
    m_holder = start(within);
}

std::vector<std::string> Namespace::enter() const
{
    std::vector<std::string> command{"/usr/bin/env", "nsenter", "-t", process(), "-n"};
    if (geteuid() != 0) {
        append(command, {"-U", "--preserve-credentials"});
    }
    return command;
}

std::unique_ptr<Process> Namespace::startInside(const std::vector<std::string>& command) const
{
    std::vector<std::string> whole = enter();
    append(whole, command);
    return start(whole);
}

std::string Namespace::run(const std::vector<std::string>& command) const
{
    const std::unique_ptr<Process> process = startInside(command);
    return process->waitForEnd() == 0 ? "" : "'" + command.front() + "': " + process->standardError();
}

std::string Namespace::outputOf(const std::vector<std::string>& command) const
{
    const std::unique_ptr<Process> process = startInside(command);
    process->waitForEnd();
    return process->standardOutput();
}

} // namespace dorn::gateway::test
