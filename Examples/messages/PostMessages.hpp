// SPDX-License-Identifier: MIT
/// @file PostMessages.hpp
/// What one says to the service that runs power-on self-tests.
#pragma once

#include "Msg.hpp"

#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t postServiceCpid = 0x021A;

/// The results of the main controller and of the DSP.
constexpr const char* mcuPostPath = "/ffs/run/post_mcu.txt";
constexpr const char* dspPostPath = "/ffs/run/post_dsp.txt";
/// The ring buffer's file, where troubleshooting data is gathered.
constexpr const char* postLogName = "post.log";
/// What the DSP is started with.
constexpr const char* dspParametersPath = "/opt/dorn/dsp.xml";

/// "Run the tests."
struct SPostRunReq {
    std::uint32_t transactionId;
    std::uint32_t failing; ///< how many of the main controller's tests are to fail
};

struct SPostRunResp {
    std::uint32_t transactionId; ///< the request's
    std::uint32_t status;        ///< 0; 1 when the results could not be recorded or not be read again
    std::uint32_t failedLatest;  ///< tests that have failed, as read from the file
    std::uint32_t failedBefore;  ///< and of the run before; 0xFFFFFFFF when there was none
};

using PostRunReqMsg = vel::hwapi::common::Msg<SPostRunReq, 0x21A1>;
using PostRunRespMsg = vel::hwapi::common::Msg<SPostRunResp, 0x21A2>;

} // namespace dorn::examples
