// SPDX-License-Identifier: MIT
#include "device/BootLoader.hpp"

#include "ddal_boot.h"

namespace dorn::board {

std::int32_t BootLoader::startLocation() const
{
    const auto described = static_cast<std::int32_t>(m_node.cell("dorn,start-location"));
    if (described != DDAL_BOOT_PRIMARY) {
        return described;
    }
    const auto image = flash().flashed();
    return image && !image->isWhole && !image->isPending ? DDAL_BOOT_BACKUP : described;
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
