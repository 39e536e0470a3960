// SPDX-License-Identifier: MIT
#include "board/ChildServiceProcess.hpp"

#include "process/ChildStart.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

extern "C" { // glibc 2.36 leaves it out
#include <sys/pidfd.h>
}

namespace dorn::tool {
namespace {

constexpr std::size_t longestLine = 1000;
constexpr std::size_t mostLines = 20; // of one call

void set(std::vector<std::string>& environment, const Variable& variable)
{
    const std::string begin = variable.first + "=";
    std::erase_if(environment, [&begin](const std::string& entry) { return entry.starts_with(begin); });
    environment.push_back(begin + variable.second);
}

} // namespace

std::unique_ptr<ServiceProcess> ChildServiceLauncher::launch(const ServiceDescription& service)
{
    std::vector<std::string> environment = host::ownEnvironment();
    for (const Variable& variable : m_environment) {
        set(environment, variable);
    }
    for (const Variable& variable : service.environment) {
        set(environment, variable);
    }
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    host::Descriptor output(ends[0]);
    const host::Descriptor toWrite(ends[1]);
    fcntl(output.get(), F_SETFL, O_NONBLOCK);
    const pid_t pid =
        host::startChild({service.program, service.arguments, environment, toWrite.get(), toWrite.get(), true});
    return std::make_unique<ChildServiceProcess>(pid, std::move(output));
}

ChildServiceProcess::ChildServiceProcess(pid_t pid, host::Descriptor output)
    : m_pid(pid), m_end(pidfd_open(pid, 0)), m_output(std::move(output))
{
}

ChildServiceProcess::~ChildServiceProcess()
{
    if (!m_status) {
        kill(-m_pid, SIGKILL);
        while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void ChildServiceProcess::signal(int number)
{
    if (!m_status) {
        // Not reaped, so no other process can have its number. Killed, it cannot end what it has started itself.
        kill(number == SIGKILL ? -m_pid : m_pid, number);
    }
}

std::optional<int> ChildServiceProcess::status()
{
    int status = 0;
    if (!m_status && waitpid(m_pid, &status, WNOHANG) == m_pid) {
        m_status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
        m_end.reset();
    }
    return m_status;
}

bool ChildServiceProcess::isStopped() const
{
    std::ifstream file("/proc/" + std::to_string(m_pid) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t name = text.rfind(") "); // the name may have blanks and brackets
    return !m_status && name != std::string::npos && name + 2 < text.size() &&
           (text[name + 2] == 'T' || text[name + 2] == 't');
}

/// @return whether there may be more.
bool ChildServiceProcess::readPart()
{
    std::array<char, 4096> part; // NOLINT: filled by the call
    const ssize_t size = read(m_output.get(), part.data(), part.size());
    if (size > 0) {
        m_text.append(part.data(), static_cast<std::size_t>(size));
        return true;
    }
    if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
        m_output.reset();
    }
    return false;
}

std::vector<std::string> ChildServiceProcess::takeLines()
{
    constexpr int mostParts = 16; // who floods must not keep the others waiting
    std::vector<std::string> lines;
    const auto take = [this, &lines](std::size_t size) {
        if (lines.size() < mostLines) {
            lines.push_back(m_text.substr(0, std::min(size, longestLine)));
        }
        m_text.erase(0, size + 1);
    };
    for (int parts = 0; parts < mostParts && m_output && readPart(); ++parts) {
        for (std::size_t end = m_text.find('\n'); end != std::string::npos; end = m_text.find('\n')) {
            take(end);
        }
        if (m_text.size() > longestLine) {
            take(m_text.size());
        }
    }
    if (m_status && !m_text.empty()) {
        take(m_text.size());
    }
    return lines;
}

std::vector<int> ChildServiceProcess::descriptors() const
{
    std::vector<int> all;
    for (const host::Descriptor* const one : {&m_end, &m_output}) {
        if (*one) {
            all.push_back(one->get());
        }
    }
    return all;
}

} // namespace dorn::tool
