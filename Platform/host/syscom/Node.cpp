// SPDX-License-Identifier: MIT
#include "syscom/Node.hpp"

#include "AaConfigTag.h"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"

#include <array>
#include <cstdio>

namespace dorn::host {
namespace {

/// The own id as the environment gave it when it was first asked for; 0 when it is no node id.
struct OwnNode {
    std::uint16_t id = 0;
    OwnNode()
    {
        try {
            id = nodeIdFromEnvironment();
        } catch (const EnvironmentError& error) {
            std::fprintf(stderr, "dorn: %s\n", error.what());
        }
    }
};

/// Looks up a property of a node in the node map, the tags "sys.nmap.<node id>.<property>".
std::uint32_t nodeMapEntry(TAaSysComSicad sicad, const char* property)
{
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "sys.nmap.%04x.%s", static_cast<unsigned>(nodeOf(sicad)), property);
    std::uint32_t value = 0;
    return AaConfigTagGetU32(name.data(), &value) == EAaConfigTagStatus_Ok ? value : 0;
}

} // namespace

bool isOwnNode(TAaSysComNid nid)
{
    const TAaSysComNid own = AaSysComGetOwnNid();
    return nid == own || nid == idInAddresses(own);
}

} // namespace dorn::host

TAaSysComNid AaSysComGetOwnNid()
{
    return dorn::host::PerNode<dorn::host::OwnNode>::get().id;
}

TAaSysComSicad AaSysComSicadGet(TAaSysComCpid cpid, TAaSysComNid nid)
{
    return (nid & 0xFFFFU) << 16 | cpid;
}

uint32_t AaSysComNmapGetBoard(TAaSysComSicad sicad)
{
    return dorn::host::nodeMapEntry(sicad, "board");
}

uint32_t AaSysComNmapGetCpu(TAaSysComSicad sicad)
{
    return dorn::host::nodeMapEntry(sicad, "cpu");
}
