// SPDX-License-Identifier: MIT
/// @file DownloadMessages.hpp
/// What one says to the download service.
#pragma once

#include "Msg.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t downloadServiceCpid = 0x0219;

/// "Load this file into a DSP." The file systems are made writable on the way.
struct SDownloadReq {
    std::uint32_t transactionId;
    std::uint32_t device;      ///< RapidIO id
    std::uint32_t addressHigh; ///< upper half of the address at which the file begins
    std::uint32_t addressLow;  ///< its lower half
    std::array<char, 64> file; ///< path on the target; ends at the first zero or with the field
};

struct SDownloadResp {
    std::uint32_t transactionId;
    std::int32_t writeResult;      ///< of writeBinaryFileToSrio()
    std::int32_t validationResult; ///< of validateSrioWrite(); -1 when nothing was written
    std::uint32_t isWritable;      ///< 1 when both flash file systems are mounted read-write
};

using DownloadReqMsg = vel::hwapi::common::Msg<SDownloadReq, 0x21C1>;
using DownloadRespMsg = vel::hwapi::common::Msg<SDownloadResp, 0x21C2>;

} // namespace dorn::examples
