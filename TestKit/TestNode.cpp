// SPDX-License-Identifier: MIT
#include "TestNode.hpp"

#include "node/BoardRoot.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <system_error>

namespace dorn::testkit {
namespace {

[[noreturn]] void fail(const std::string& path, int error)
{
    throw std::system_error(error, std::generic_category(), path);
}

void makeDirectory(const std::string& path)
{
    if (mkdir(path.c_str(), 0700) != 0) {
        fail(path, errno);
    }
}

/// Makes a directory whose path has no symbolic link in it: the platform follows none.
std::string makeTemporaryDirectory()
{
    const char* const base = std::getenv("TMPDIR");
    std::string path = std::filesystem::canonical(base && *base ? base : "/tmp").string() + "/dnXXXXXX";
    if (!mkdtemp(path.data())) {
        fail(path, errno);
    }
    return path;
}

std::optional<std::string> variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

void writeVariable(const std::string& name, const std::optional<std::string>& value)
{
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
}

} // namespace

TestNode::TestNode(const TestNodeOptions& options) : m_directory(makeTemporaryDirectory())
{
    makeDirectory(runDirectory());
    makeDirectory(boardRoot());
    host::closeNode();
    setVariable("DORN_RUN_DIR", runDirectory());
    setVariable("DORN_ROOT", boardRoot());
    setVariable("DORN_NID", options.nodeId ? std::optional(std::to_string(*options.nodeId)) : std::nullopt);
    setVariable("DORN_BOARD", std::nullopt);
    setVariable("DORN_LOG", options.log);
    setVariable("DORN_LOG_LEVEL", options.logLevel);
    listenToSignals();
}

TestNode::~TestNode()
{
    host::closeNode();
    for (const int signal : m_ignoredSignals) {
        std::signal(signal, SIG_IGN);
    }
    restoreVariables();
    std::error_code error;
    std::filesystem::remove_all(m_directory, error);
    if (error) {
        std::fprintf(stderr, "test node '%s' cannot be removed: %s\n", m_directory.c_str(), error.message().c_str());
    }
}

void TestNode::setVariable(const char* name, const std::optional<std::string>& value)
{
    m_previous.emplace_back(name, variable(name));
    writeVariable(name, value);
}

void TestNode::restoreVariables()
{
    for (const auto& [name, value] : m_previous) {
        writeVariable(name, value);
    }
}

void TestNode::listenToSignals()
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if ((action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_IGN) { // NOLINT: the system's macro
            std::signal(signal, SIG_DFL);
            m_ignoredSignals.push_back(signal);
        }
    }
}

std::string TestNode::nodeDirectory() const
{
    return host::RunDirectory(runDirectory(), host::nodeIdFromEnvironment()).path();
}

std::string TestNode::boardPath(const std::string& targetPath) const
{
    std::string path = host::boardPath(targetPath);
    if (path.empty()) {
        fail("'" + targetPath + "' is not an absolute path of the target", EINVAL);
    }
    return path;
}

void TestNode::writeBoardFile(const std::string& targetPath, const std::string& content) const
{
    const std::filesystem::path path = boardPath(targetPath);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content << std::flush;
    if (!file) {
        fail(path, errno);
    }
}

std::string TestNode::readBoardFile(const std::string& targetPath) const
{
    const std::string path = boardPath(targetPath);
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        fail(path, errno);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace dorn::testkit
