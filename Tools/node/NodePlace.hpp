// SPDX-License-Identifier: MIT
/// @file NodePlace.hpp
/// Looking whether a node is there before anything of it is opened: opening makes what is missing.
#pragma once

#include <cstdint>
#include <string>

namespace dorn::tool {

/// What the services of a node leave in its directory.
enum class NodePart { Services, RadParameters, Tags, Messages, Log, DriverFaults, Gateway };

/// The place where the environment says that the node is.
class NodePlace {
public:
    /// @throws host::EnvironmentError when the environment makes no sense.
    NodePlace();

    /// "node 0x0F01"
    std::string nodeName() const;

    /// Whether there is such a part. @throws Failure when that cannot be seen.
    bool has(NodePart part) const;
    /// @throws Failure when there is no such part; the text says where it was looked for.
    void require(NodePart part) const;

private:
    std::string m_runPath;
    std::uint16_t m_nodeId;
};

} // namespace dorn::tool
