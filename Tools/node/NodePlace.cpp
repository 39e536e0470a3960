// SPDX-License-Identifier: MIT
#include "node/NodePlace.hpp"

#include "Outcome.hpp"
#include "node/RunDirectory.hpp"
#include "text/Values.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace dorn::tool {
namespace {

struct PartText {
    NodePart part;
    const char* file;
    const char* missing;
};

constexpr std::array<PartText, 7> parts{{
    {NodePart::Services, "ees", "no services have run here"},
    {NodePart::RadParameters, "rad/control", "no R&D parameters have been registered here"},
    {NodePart::Tags, "tags/data.mdb", "no tags have been set here"},
    {NodePart::Messages, "cpids", "no services have run here"},
    {NodePart::Log, "log.control", "no log has been written here"},
    {NodePart::DriverFaults, "board.faults", "no driver function has been told to fail here"},
    {NodePart::Gateway, "cpids", "no gateway has run here"},
}};

const PartText& textOf(NodePart part)
{
    return parts[static_cast<std::size_t>(part)];
}

constexpr bool isInOrder()
{
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (static_cast<std::size_t>(parts[index].part) != index) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder());

} // namespace

NodePlace::NodePlace() : m_runPath(host::runPathFromEnvironment()), m_nodeId(host::nodeIdFromEnvironment()) {}

std::string NodePlace::nodeName() const
{
    return "node " + hexNumber(m_nodeId, 4);
}

bool NodePlace::has(NodePart part) const
{
    std::array<char, 8> folder{};
    std::snprintf(folder.data(), folder.size(), "/%04x/", static_cast<unsigned>(m_nodeId));
    const std::string path = m_runPath + folder.data() + textOf(part).file;
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0) {
        return true;
    }
    if (errno != ENOENT) {
        throw Failure("'" + path + "' cannot be seen: " + std::strerror(errno));
    }
    return false;
}

void NodePlace::require(NodePart part) const
{
    if (!has(part)) {
        throw Failure(std::string(textOf(part).missing) + ": " + nodeName() + " in '" + m_runPath +
                      "' (DORN_RUN_DIR and DORN_NID choose another)");
    }
}

} // namespace dorn::tool
