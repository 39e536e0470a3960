// SPDX-License-Identifier: MIT
/// @file FirmwareMessages.hpp
/// What one says to the firmware service.
#pragma once

#include "Msg.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t firmwareServiceCpid = 0x0218;

/// "Look whether the board's FPGA needs another image, and flash it if so."
struct SFirmwareUpdateReq {
    std::uint32_t transactionId;
};

/// What came of it.
enum EFirmwareOutcome : std::uint32_t {
    EFirmwareOutcome_Flashed = 0,  ///< both slots; the FPGA takes it into use at the next reset
    EFirmwareOutcome_UpToDate = 1, ///< the FPGA runs what the image holds
    EFirmwareOutcome_Disabled = 2, ///< an operator has switched updates off
    EFirmwareOutcome_Refused = 3,  ///< the image is damaged or for another board: `result` is that of binary_validate()
    EFirmwareOutcome_Failed = 4    ///< `result` is that of is_fpga_update_needed() or update_fpga()
};

struct SFirmwareUpdateResp {
    std::uint32_t transactionId; ///< the request's
    std::uint32_t outcome;       ///< EFirmwareOutcome
    std::int32_t result;         ///< 0 unless it was refused or failed
    std::uint32_t activeVersion; ///< of the image that the FPGA runs; 0 when nobody knows
    std::array<char, 128> file;  ///< the image that was looked at; empty when there is none
};
static_assert(sizeof(SFirmwareUpdateResp) == 144);

/// "Reset the board, so that what was flashed is taken into use." Has no answer.
struct SBoardResetReq {
    std::uint32_t transactionId;
};

using FirmwareUpdateReqMsg = vel::hwapi::common::Msg<SFirmwareUpdateReq, 0x2191>;
using FirmwareUpdateRespMsg = vel::hwapi::common::Msg<SFirmwareUpdateResp, 0x2192>;
using BoardResetReqMsg = vel::hwapi::common::Msg<SBoardResetReq, 0x2193>;

} // namespace dorn::examples
