// SPDX-License-Identifier: MIT
/// @file LedMessages.hpp
/// What one says to the LED service.
#pragma once

#include "Msg.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t ledServiceCpid = 0x0212;

enum EFrontLed : std::uint32_t { EFrontLed_Status = 0, EFrontLed_Climate = 1, EFrontLed_Count = 2 };
enum ELedColour : std::uint32_t {
    ELedColour_Off = 0,
    ELedColour_Green = 1,
    ELedColour_Amber = 2,
    ELedColour_Red = 3,
    ELedColour_Count = 4
};

/// "Show this colour."
struct SLedSetReq {
    std::uint32_t led;    ///< EFrontLed
    std::uint32_t colour; ///< ELedColour
};

struct SLedSetResp {
    std::uint32_t led;
    std::uint32_t colour;         ///< what it shows now
    std::uint32_t previousColour; ///< what it showed before
    std::uint32_t status;         ///< 0; 1 when there is no such LED or colour: nothing has changed
};

using LedSetReqMsg = vel::hwapi::common::Msg<SLedSetReq, 0x2101>;
using LedSetRespMsg = vel::hwapi::common::Msg<SLedSetResp, 0x2102>;

} // namespace dorn::examples
