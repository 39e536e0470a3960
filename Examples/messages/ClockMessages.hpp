// SPDX-License-Identifier: MIT
/// @file ClockMessages.hpp
/// What one says to the clock service: a look at the board's clocks, and what happens to them from outside.
///
/// Every request has one answer, with the request's transaction id.
#pragma once

#include "Msg.hpp"

#include <cstddef>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t clockServiceCpid = 0x0217;

/// "How are the clocks?"
struct SClockShowReq {
    std::uint32_t transactionId;
};

/// The answer: what the service knows from events, and what is true of the simulated hardware.
struct SClockShowResp {
    std::uint32_t transactionId;
    std::uint32_t pllState;          ///< ESwPllState
    std::uint32_t timerState;        ///< ETimerSyncState
    std::uint32_t phaseLockStatus;   ///< EPhaseLockStatus
    std::uint32_t calibrationStatus; ///< EClockCalibrationStatus
    std::uint32_t dacStatus;         ///< 0 not ok, 1 ok, 2 near the limit of its adjustment
    std::int32_t controlValue;       ///< of the oscillator's DAC
    std::uint32_t areSensorsOk;      ///< 1 or 0
    std::uint32_t ovenCurrent;       ///< milliamperes
    std::int32_t ocxoTemperature;    ///< of the oven, thousandths of degrees Celsius
    std::int32_t outerTemperature;   ///< of the outer oven, the same
    std::uint32_t hasReference;      ///< 1 or 0
    double phaseError;               ///< nanoseconds, as reported with the PLL's latest change of state
    double timeError;                ///< nanoseconds that the board's time is ahead; the truth
    double frequencyError;           ///< parts per billion that the board's clock is fast; the truth
};
static_assert(sizeof(SClockShowResp) == 72);
static_assert(offsetof(SClockShowResp, phaseError) == 48);

/// What happens to the clock hardware.
enum EClockAction : std::uint32_t {
    EClockAction_LoseReference = 1,
    EClockAction_RestoreReference = 2,
    EClockAction_LoseSensors = 3,
    EClockAction_RestoreSensors = 4,
    EClockAction_Jump = 5 ///< the crystal's frequency jumps
};

/// "This happens."
struct SClockActReq {
    std::uint32_t transactionId;
    std::uint32_t action; ///< EClockAction
    double amount;        ///< EClockAction_Jump: parts per billion, at most #greatestClockJump either way
};
static_assert(sizeof(SClockActReq) == 16);

/// Parts per billion; enough to exceed what the oscillator's DAC can take back.
constexpr double greatestClockJump = 1000;

enum EClockActStatus : std::uint32_t {
    EClockActStatus_Done = 0,
    EClockActStatus_SoAlready = 1, ///< what was to be lost or restored is so already
    EClockActStatus_NoSuchAction = 2,
    EClockActStatus_BadAmount = 3
};

struct SClockActResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< EClockActStatus
};

using ClockShowReqMsg = vel::hwapi::common::Msg<SClockShowReq, 0x2181>;
using ClockShowRespMsg = vel::hwapi::common::Msg<SClockShowResp, 0x2182>;
using ClockActReqMsg = vel::hwapi::common::Msg<SClockActReq, 0x2183>;
using ClockActRespMsg = vel::hwapi::common::Msg<SClockActResp, 0x2184>;

} // namespace dorn::examples
