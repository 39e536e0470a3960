// SPDX-License-Identifier: MIT
/// @file ResultText.hpp
/// What results of the driver seam mean.
#pragma once

#include <cstdint>
#include <string>

namespace dorn::board {

/// "device is busy"; "unknown error 99" for a code that is none of the seam's.
std::string resultText(std::int32_t code);

} // namespace dorn::board
