// SPDX-License-Identifier: MIT
#include "ddal_unit.h"

#include "description/DescribedBoard.hpp"
#include "driver/DriverCall.hpp"

uint32_t ddal_unit_get_board(void)
{
    using namespace dorn::board;
    std::uint32_t code = 0;
    driverCall(DriverFunction("ddal_unit_get_board"),
               [&] { code = DescribedBoard::get().board().cell("dorn,board-code"); });
    return code;
}
