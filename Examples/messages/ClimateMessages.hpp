// SPDX-License-Identifier: MIT
/// @file ClimateMessages.hpp
/// What one says to the climate service.
#pragma once

#include "Msg.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t climateServiceCpid = 0x0211;

/// Configuration tag, U32: temperature of the air around the board in degrees Celsius.
constexpr const char* ambientTag = "board.climate.ambient";

/// "How warm is it?"
struct SClimateStatusReq {
    std::uint32_t transactionId;
};

struct SClimateStatusResp {
    std::uint32_t transactionId; ///< the request's
    std::int32_t temperature;    ///< of the board, degrees Celsius
    std::uint32_t fanPercent;    ///< speed of the fan
    std::uint32_t alarmLevel;    ///< 0 cool, 1 warm, 2 hot
};

using ClimateStatusReqMsg = vel::hwapi::common::Msg<SClimateStatusReq, 0x2111>;
using ClimateStatusRespMsg = vel::hwapi::common::Msg<SClimateStatusResp, 0x2112>;

} // namespace dorn::examples
