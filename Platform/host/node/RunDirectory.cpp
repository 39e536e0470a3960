// SPDX-License-Identifier: MIT
#include "node/RunDirectory.hpp"

#include "port/Descriptor.hpp"
#include "port/FilePort.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

constexpr mode_t privateMode = 0700;
constexpr int walkFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
/// On the way a directory is only passed through, which needs no right to read it.
constexpr int passFlags = walkFlags | O_PATH;
constexpr const char* advice = "; set DORN_RUN_DIR to a directory of your own";

[[noreturn]] void refuse(const std::string& path, const std::string& reason)
{
    throw EnvironmentError("run directory '" + path + "': " + reason);
}

/// Opens one component of a path, making it when it is missing.
int stepInto(int directory, const std::string& component, const std::string& soFar, int flags = walkFlags)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        const int next = ::openat(directory, component.c_str(), O_RDONLY | flags);
        if (next >= 0) {
            return next;
        }
        if (errno == ELOOP || errno == ENOTDIR) {
            refuse(soFar, "is reached through a symbolic link or is no directory; name the real directory");
        }
        if (errno != ENOENT) {
            refuse(soFar, std::string("cannot be opened: ") + std::strerror(errno) + advice);
        }
        const int made = FilePort::get().makeDirectory(directory, component.c_str(), privateMode);
        if (made < 0 && made != -EEXIST) {
            refuse(soFar, std::string("cannot be made: ") + std::strerror(-made) + advice);
        }
    }
    refuse(soFar, "vanishes while it is being made");
}

/// Opens @p path component by component, so that no symbolic link is followed anywhere on the way.
int openWithoutLinks(const std::string& path)
{
    Descriptor current(::open("/", O_RDONLY | passFlags));
    std::string soFar;
    for (std::size_t begin = 1; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string component = path.substr(begin, end - begin);
        begin = end + 1;
        if (component.empty() || component == ".") {
            continue;
        }
        if (component == "..") {
            refuse(path, "must not contain '..'");
        }
        soFar += "/" + component;
        current.reset(stepInto(current.get(), component, soFar, passFlags));
    }
    return current.release();
}

void requirePrivate(int descriptor, const std::string& path)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        refuse(path, std::strerror(errno));
    }
    if (status.st_uid != geteuid()) {
        refuse(path, "belongs to user " + std::to_string(status.st_uid) + ", not to user " + std::to_string(geteuid()) +
                         advice);
    }
    if ((status.st_mode & 077U) != 0) {
        refuse(path, "is open to other users; its mode must be 0700");
    }
}

std::string nodeName(std::uint16_t nodeId)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%04x", static_cast<unsigned>(nodeId));
    return text.data();
}

} // namespace

std::string runPathFromEnvironment()
{
    if (const char* const path = std::getenv("DORN_RUN_DIR"); path && *path) {
        return path;
    }
    if (const char* const path = std::getenv("XDG_RUNTIME_DIR"); path && *path) {
        return std::string(path) + "/dorn";
    }
    return "/run/dorn";
}

std::uint16_t nodeIdFromEnvironment()
{
    constexpr std::uint16_t defaultNodeId = 0x0F01;
    const char* const text = std::getenv("DORN_NID");
    if (!text || !*text) {
        return defaultNodeId;
    }
    char* end = nullptr;
    errno = 0;
    const bool startsWithDigit = *text >= '0' && *text <= '9';
    const unsigned long value = std::strtoul(text, &end, 0);
    if (!startsWithDigit || *end || errno || value > 0xFFFF) {
        throw EnvironmentError(std::string("DORN_NID '") + text +
                               "' is not a node id (0 to 65535, or 0x0000 to 0xFFFF)");
    }
    return static_cast<std::uint16_t>(value);
}

RunDirectory::RunDirectory() : RunDirectory(runPathFromEnvironment(), nodeIdFromEnvironment()) {}

RunDirectory::RunDirectory(const std::string& runPath, std::uint16_t nodeId) : m_nodeId(nodeId)
{
    if (runPath.empty() || runPath.front() != '/') {
        refuse(runPath, "must be an absolute path");
    }
    Descriptor run(openWithoutLinks(runPath));
    requirePrivate(run.get(), runPath);
    m_path = runPath + "/" + nodeName(nodeId);
    Descriptor node(stepInto(run.get(), nodeName(nodeId), m_path));
    requirePrivate(node.get(), m_path);
    m_descriptor = node.release();
}

RunDirectory::~RunDirectory()
{
    close(m_descriptor);
}

std::string RunDirectory::shortPath(const std::string& name) const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor) + "/" + name;
}

void RunDirectory::makeSubdirectory(const std::string& name) const
{
    close(stepInto(m_descriptor, name, m_path + "/" + name));
}

} // namespace dorn::host
