// SPDX-License-Identifier: MIT
#include "device/BootLoader.hpp"

namespace dorn::board {

std::int32_t BootLoader::startLocation() const
{
    return static_cast<std::int32_t>(m_node.cell("dorn,start-location"));
}

std::string BootLoader::version() const
{
    return versionInUse({flash()}, m_node.text("dorn,version"));
}

FlashArea BootLoader::flash() const
{
    return {"boot-loader", m_node.cell("dorn,size"), m_node.cellIfAny("dorn,version-offset")};
}

} // namespace dorn::board
