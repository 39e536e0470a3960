// SPDX-License-Identifier: MIT
#include "ddal_ffs.h"

#include "description/DescribedBoard.hpp"
#include "device/FileSystem.hpp"
#include "driver/DriverCall.hpp"

int32_t ddal_ffs_is_mounted(uint32_t fileSystem, uint32_t* mode)
{
    using namespace dorn::board;
    return driverCall(DriverFunction("ddal_ffs_is_mounted"), [&] {
        require(mode) = FileSystem(DescribedBoard::get().part("file-systems", fileSystem)).mode();
    });
}
