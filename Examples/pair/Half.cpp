// SPDX-License-Identifier: MIT
#include "Half.hpp"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

namespace dorn::pair {
namespace {

constexpr auto stepBound = std::chrono::seconds(10);
constexpr auto pauseBetweenQuestions = std::chrono::milliseconds(20);
constexpr const char* gatewayName = "gateway";
constexpr int serviceEndedWell = 1; // what Startup() returns
constexpr int commandEndedWell = 0;

std::filesystem::path programs()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::string commandPath()
{
    return (programs() / "dorn").string();
}

/// The first whole line behind @p passed, the begin of a line, that contains @p text.
std::optional<std::string> lineWith(const std::string& text, const std::string& all, std::size_t passed)
{
    const std::size_t at = all.find(text, passed);
    if (at == std::string::npos || all.find('\n', at) == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t begin = at == 0 ? std::string::npos : all.rfind('\n', at - 1);
    const std::size_t first = begin == std::string::npos ? 0 : begin + 1;
    return all.substr(first, all.find('\n', at) - first);
}

} // namespace

Half::Half(std::string name, std::uint16_t node, std::filesystem::path directory)
    : m_name(std::move(name)), m_node(node), m_directory(std::move(directory))
{
    std::filesystem::create_directories(m_directory / "root/opt/dorn");
    std::filesystem::create_directory(m_directory / "run");
    std::filesystem::permissions(m_directory / "run", std::filesystem::perms::owner_all);
}

std::string Half::nodeText() const
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", static_cast<unsigned>(m_node));
    return text.data();
}

std::filesystem::path Half::boardFile(const std::string& targetPath) const
{
    return (m_directory / "root").string() + targetPath;
}

void Half::enter() const
{
    setenv("DORN_RUN_DIR", (m_directory / "run").c_str(), 1);
    setenv("DORN_ROOT", (m_directory / "root").c_str(), 1);
    setenv("DORN_BOARD", (programs().parent_path() / "boards" / "tarn-pair-master.dtb").c_str(), 1);
    setenv("DORN_NID", nodeText().c_str(), 1);
    setenv("DORN_LOG", "file", 1);
}

void Half::startGateway()
{
    enter();
    m_processes[gatewayName] =
        std::make_unique<testkit::Process>(commandPath(), std::vector<std::string>{"gateway", "run"});
}

void Half::startService(const std::string& name, const std::vector<std::string>& arguments)
{
    enter();
    m_processes[name] = std::make_unique<testkit::Process>((programs() / ("Dorn" + name + "Exe")).string(), arguments);
}

void Half::followLog()
{
    enter();
    m_log = std::make_unique<testkit::Process>(commandPath(), std::vector<std::string>{"log", "-f"});
    m_logPassed = 0;
}

void Half::passLog()
{
    const std::size_t end = m_log->standardOutput().rfind('\n');
    m_logPassed = end == std::string::npos ? 0 : end + 1;
}

CommandResult Half::command(const std::vector<std::string>& arguments) const
{
    enter();
    unsetenv("DORN_LOG");
    testkit::Process process(commandPath(), arguments);
    const int status = process.waitForEnd();
    return {status, process.standardOutput(), process.standardError()};
}

std::string Half::ask(const std::vector<std::string>& arguments) const
{
    const CommandResult result = command(arguments);
    if (result.status != 0) {
        throw std::runtime_error("half " + m_name + ": " + result.answer + result.remarks);
    }
    return result.answer;
}

std::string Half::askUntil(const std::vector<std::string>& arguments, const std::string& text) const
{
    const auto end = std::chrono::steady_clock::now() + stepBound;
    for (;;) {
        const CommandResult result = command(arguments);
        if (result.status == 0 && result.answer.find(text) != std::string::npos) {
            return result.answer;
        }
        if (std::chrono::steady_clock::now() >= end) {
            throw std::runtime_error("half " + m_name + ": " + result.answer + result.remarks + lastWords());
        }
        std::this_thread::sleep_for(pauseBetweenQuestions);
    }
}

std::string Half::awaitLine(const std::string& text) const
{
    const auto end = std::chrono::steady_clock::now() + stepBound;
    for (;;) {
        if (const std::optional<std::string> line = lineWith(text, m_log->standardOutput(), m_logPassed)) {
            return *line;
        }
        if (std::chrono::steady_clock::now() >= end) {
            throw std::runtime_error("half " + m_name + " logs no \"" + text + "\"\n" + lastWords());
        }
        std::this_thread::sleep_for(pauseBetweenQuestions);
    }
}

/// What those have said that have ended.
std::string Half::lastWords() const
{
    std::string words;
    for (const auto& [name, process] : m_processes) {
        if (!process->isRunning()) {
            words += name + " has ended: " + process->standardError();
        }
    }
    return words;
}

void Half::die()
{
    for (const auto& [name, process] : m_processes) {
        process->signal(SIGKILL);
    }
    for (const auto& [name, process] : m_processes) {
        process->waitForEnd();
    }
    m_processes.clear();
}

void Half::end()
{
    for (const auto& [name, process] : m_processes) {
        if (name != gatewayName) {
            process->signal(SIGTERM);
        }
    }
    for (const auto& [name, process] : m_processes) {
        if (name != gatewayName) {
            endWell(name, serviceEndedWell);
        }
    }
    m_processes.at(gatewayName)->signal(SIGTERM);
    endWell(gatewayName, commandEndedWell);
    m_processes.clear();
}

void Half::endWell(const std::string& name, int wellStatus)
{
    testkit::Process& process = *m_processes.at(name);
    if (const int status = process.waitForEnd(); status != wellStatus) {
        throw std::runtime_error("half " + m_name + ": " + name + " ended with status " + std::to_string(status) +
                                 "\n" + process.standardError());
    }
}

} // namespace dorn::pair
