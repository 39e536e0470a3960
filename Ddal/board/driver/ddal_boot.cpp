// SPDX-License-Identifier: MIT
#include "ddal_boot.h"

#include "description/DescribedBoard.hpp"
#include "device/BootLoader.hpp"
#include "driver/DriverText.hpp"

namespace {

using namespace dorn::board;

BootLoader bootLoader()
{
    return BootLoader(DescribedBoard::get().part("boot-loader"));
}

} // namespace

int32_t ddal_boot_get_uboot_id(int32_t* location)
{
    return driverCall(DriverFunction("ddal_boot_get_uboot_id"),
                      [&] { require(location) = bootLoader().startLocation(); });
}

int32_t ddal_boot_get_uboot_version(char* version)
{
    return driverCall(DriverFunction("ddal_boot_get_uboot_version"),
                      [&] { TextBuffer::ofSize(DDAL_BOOT_VERSION_SIZE, version).write(bootLoader().version()); });
}

int32_t ddal_boot_update_uboot(const char* path)
{
    const auto update = [&](FlashExtent extent) { bootLoader().update(&require(path), extent); };
    return driverCall(
        DriverFunction("ddal_boot_update_uboot"), [&] { update(FlashExtent::Whole); },
        [&] { update(FlashExtent::Half); });
}
