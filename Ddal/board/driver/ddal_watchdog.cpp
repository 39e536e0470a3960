// SPDX-License-Identifier: MIT
#include "ddal_watchdog.h"

#include "description/DescribedBoard.hpp"
#include "device/Resets.hpp"
#include "driver/DriverCall.hpp"

int32_t ddal_watchdog_reboot(void)
{
    using namespace dorn::board;
    return driverCall(DriverFunction("ddal_watchdog_reboot"), [] {
        DescribedBoard::get().part("watchdog");
        resetBoard();
    });
}
