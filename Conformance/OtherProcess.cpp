// SPDX-License-Identifier: MIT
#include "OtherProcess.hpp"

#include "Check.hpp"
#include "Options.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::conformance {
namespace {

std::vector<std::string> roleArguments(const std::string& role, const std::vector<std::string>& arguments)
{
    std::vector<std::string> all;
    // What the board is like, without the rule that this process tries.
    for (std::size_t index = 0; index < options().arguments.size(); ++index) {
        if (options().arguments[index] == "--rule" || options().arguments[index] == "--report") {
            ++index;
        } else {
            all.push_back(options().arguments[index]);
        }
    }
    all.insert(all.end(), {"--role", role});
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

} // namespace

OtherProcess::OtherProcess(const std::string& role, const std::vector<std::string>& arguments)
    : m_role(role),
      m_pid(spawnSelf(roleArguments(role, arguments),
                      {{m_input.readEnd.number(), STDIN_FILENO}, {m_output.writeEnd.number(), STDOUT_FILENO}}, false))
{
    m_input.readEnd.close();
    m_output.writeEnd.close();
}

OtherProcess::~OtherProcess()
{
    if (!m_isReaped) {
        kill(m_pid, SIGKILL);
        waitForChild(m_pid);
    }
}

std::string OtherProcess::hear()
{
    for (;;) {
        const std::size_t end = m_heard.find('\n');
        if (end != std::string::npos) {
            std::string line = m_heard.substr(0, end);
            m_heard.erase(0, end + 1);
            return line;
        }
        pollfd entry{m_output.readEnd.number(), POLLIN, 0};
        expect(poll(&entry, 1, static_cast<int>(bound().count())) > 0,
               "the other process (" + m_role + ") does not get on");
        std::array<char, 256> buffer{};
        const ssize_t size = read(entry.fd, buffer.data(), buffer.size());
        expect(size > 0, "the other process (" + m_role + ") has ended");
        m_heard.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

void OtherProcess::expectToHear(const std::string& line)
{
    expectEqual(hear(), line, "what the other process (" + m_role + ") tells");
}

void OtherProcess::tell()
{
    expect(::write(m_input.writeEnd.number(), "\n", 1) == 1, "the other process (" + m_role + ") does not listen");
}

void OtherProcess::signal(int number) const
{
    kill(m_pid, number);
}

int OtherProcess::waitForEnd()
{
    // Its output ends with it: nobody else has inherited the pipe.
    const auto deadline = std::chrono::steady_clock::now() + bound();
    for (;;) {
        pollfd entry{m_output.readEnd.number(), POLLIN, 0};
        const auto left = std::chrono::ceil<Milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        expect(left > 0 && poll(&entry, 1, static_cast<int>(left)) > 0,
               "the other process (" + m_role + ") does not end");
        std::array<char, 256> buffer{};
        if (read(entry.fd, buffer.data(), buffer.size()) <= 0) {
            break;
        }
    }
    const int status = waitForChild(m_pid);
    m_isReaped = true;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

void say(const std::string& line)
{
    std::cout << line << std::endl;
}

void awaitWord()
{
    std::string line;
    std::getline(std::cin, line);
}

} // namespace dorn::conformance
