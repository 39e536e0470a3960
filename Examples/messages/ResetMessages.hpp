// SPDX-License-Identifier: MIT
/// @file ResetMessages.hpp
/// What one says to the reset service.
#pragma once

#include "Msg.hpp"
#include "RpramShared.h"

#include <array>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t resetServiceCpid = 0x021C;

using ResetText = std::array<char, RPRAM_TEXT_SIZE>;

/// "Reset the board, and remember why."
struct SResetReq {
    std::uint32_t transactionId;
    std::uint32_t reason; ///< a number of the asker's
    ResetText text;       ///< the same in words; ends at the first zero or with the field
};

enum EResetStatus : std::uint32_t {
    EResetStatus_NotRemembered = 1, ///< the reason could not be stored: the board is not reset
    EResetStatus_NotReset = 2       ///< the watchdog does not reset the board
};

/// The answer: it comes only when the board is not reset.
struct SResetResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< EResetStatus
};

/// "Why was the board reset last?"
struct SResetShowReq {
    std::uint32_t transactionId;
};

struct SResetShowResp {
    std::uint32_t transactionId;
    std::uint32_t isKnown; ///< 0 while the board has never been reset through the service
    std::uint32_t reason;
    std::uint32_t startCount; ///< starts of the service that the board remembers, this one included
    ResetText text;
};

using ResetReqMsg = vel::hwapi::common::Msg<SResetReq, 0x21B1>;
using ResetRespMsg = vel::hwapi::common::Msg<SResetResp, 0x21B2>;
using ResetShowReqMsg = vel::hwapi::common::Msg<SResetShowReq, 0x21B3>;
using ResetShowRespMsg = vel::hwapi::common::Msg<SResetShowResp, 0x21B4>;

} // namespace dorn::examples
