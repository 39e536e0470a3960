// SPDX-License-Identifier: MIT
/// @file FpgaUpdate.hpp
/// One look at the FPGA's firmware.
#pragma once

#include "FirmwareMessages.hpp"

namespace dorn::examples {

/// Finds the image for the board's FPGA, decides, and flashes both slots if that is to be.
/// @return what came of it; the transaction id is 0.
SFirmwareUpdateResp updateFpga();

} // namespace dorn::examples
