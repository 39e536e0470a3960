// SPDX-License-Identifier: MIT
#include "Runner.hpp"

#include "Options.hpp"
#include "SpawnedProcess.hpp"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::conformance {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int reportDescriptor = 3;
/// A rule waits several times at most.
constexpr int boundsPerRule = 6;

/// Appends what there is. @return false at the end.
bool readSome(int descriptor, std::string& text)
{
    std::array<char, 4096> buffer{};
    const ssize_t size = read(descriptor, buffer.data(), buffer.size());
    if (size > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return size > 0 || (size < 0 && (errno == EINTR || errno == EAGAIN));
}

/// Collects report and output until the child has closed its report.
/// @return false when it has not until @p deadline.
bool collect(const Pipe& report, const Pipe& output, Clock::time_point deadline, std::string& reported,
             std::string& printed)
{
    std::array<pollfd, 2> entries{{{report.readEnd.number(), POLLIN, 0}, {output.readEnd.number(), POLLIN, 0}}};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0 || poll(entries.data(), entries.size(), static_cast<int>(left)) == 0) {
            return false;
        }
        if (entries[1].revents != 0 && !readSome(entries[1].fd, printed)) {
            entries[1].fd = -1;
        }
        if (entries[0].revents != 0 && !readSome(entries[0].fd, reported)) {
            return true;
        }
    }
}

} // namespace

Trial tryInChild(const Rule& rule)
{
    Pipe report;
    Pipe output;
    std::vector<std::string> arguments = options().arguments;
    arguments.insert(arguments.end(), {"--rule", std::string(rule.id), "--report", std::to_string(reportDescriptor)});
    const pid_t child = spawnSelf(arguments,
                                  {{report.writeEnd.number(), reportDescriptor},
                                   {output.writeEnd.number(), STDOUT_FILENO},
                                   {output.writeEnd.number(), STDERR_FILENO}},
                                  true);
    report.writeEnd.close();
    output.writeEnd.close();

    Trial trial;
    std::string reported;
    const bool hasEnded =
        collect(report, output, Clock::now() + boundsPerRule * options().bound, reported, trial.output);
    // What the rule has started goes with it. Its leader is not yet reaped, so the group is still this one.
    siginfo_t ignored{};
    if (hasEnded) {
        waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED | WNOWAIT);
    }
    kill(-child, SIGKILL);
    const int status = waitForChild(child);
    fcntl(output.readEnd.number(), F_SETFL, O_NONBLOCK);
    for (ssize_t before = -1; before != static_cast<ssize_t>(trial.output.size());) {
        before = static_cast<ssize_t>(trial.output.size());
        readSome(output.readEnd.number(), trial.output);
    }
    trial.finding =
        hasEnded || !reported.empty()
            ? readReport(reported, status)
            : Finding{Verdict::Broken, "it hangs: nothing came of it within " +
                                           std::to_string(boundsPerRule * options().bound.count() / 1000) + " s"};
    return trial;
}

} // namespace dorn::conformance
