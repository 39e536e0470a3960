// SPDX-License-Identifier: MIT
/// @file ComfortMessages.hpp
/// What one says to the comfort service.
#pragma once

#include "Msg.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t comfortServiceCpid = 0x0213;

/// Configuration tag, U32: up to how many degrees Celsius the board is comfortable.
constexpr const char* comfortLimitTag = "board.comfort.limit";

enum EComfort : std::uint32_t {
    EComfort_Comfortable = 0,
    EComfort_TooWarm = 1,
    EComfort_Unknown = 2 ///< the climate service does not answer
};

/// "Is the board comfortable?"
struct SComfortReq {
    std::uint32_t transactionId;
};

struct SComfortResp {
    std::uint32_t transactionId; ///< the request's
    std::uint32_t comfort;       ///< EComfort
};

using ComfortReqMsg = vel::hwapi::common::Msg<SComfortReq, 0x2141>;
using ComfortRespMsg = vel::hwapi::common::Msg<SComfortResp, 0x2142>;

} // namespace dorn::examples
