// SPDX-License-Identifier: MIT
#include "device/RioPort.hpp"

#include <limits>

namespace dorn::board {

std::uint16_t RioPort::ownId() const
{
    const std::uint32_t id = m_node.cell("dorn,own-id");
    if (id > std::numeric_limits<std::uint16_t>::max()) {
        m_node.failAt("dorn,own-id", "is " + std::to_string(id) + ", and RapidIO ids have 16 bits");
    }
    return static_cast<std::uint16_t>(id);
}

std::vector<RioDevice> RioPort::devices() const
{
    std::vector<RioDevice> devices;
    for (const BoardNode& node : m_node.numberedChildren()) {
        devices.emplace_back(number(), node);
    }
    return devices;
}

} // namespace dorn::board
