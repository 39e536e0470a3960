// SPDX-License-Identifier: MIT
#include "ddal_fpga.h"

#include "description/DescribedBoard.hpp"
#include "device/Fpga.hpp"
#include "driver/DriverCall.hpp"

namespace {

using namespace dorn::board;

Fpga fpga(std::uint32_t id)
{
    return Fpga(DescribedBoard::get().part("fpgas", id));
}

} // namespace

int32_t ddal_fpga_get_active_version(uint32_t fpgaId, uint32_t* version)
{
    return driverCall(DriverFunction("ddal_fpga_get_active_version"),
                      [&] { require(version) = fpga(fpgaId).version(); });
}

int32_t ddal_fpga_update_mod(uint32_t fpgaId, uint32_t slot, const char* path)
{
    const auto update = [&](FlashExtent extent) { fpga(fpgaId).update(slot, &require(path), extent); };
    return driverCall(
        DriverFunction("ddal_fpga_update_mod"), [&] { update(FlashExtent::Whole); },
        [&] { update(FlashExtent::Half); });
}
