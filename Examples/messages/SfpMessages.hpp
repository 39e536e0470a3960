// SPDX-License-Identifier: MIT
/// @file SfpMessages.hpp
/// What one says to the SFP service: a look at its cages, and what somebody's hands do to them.
///
/// Every request has one answer, with the request's transaction id.
#pragma once

#include "Msg.hpp"

#include <cstddef>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t sfpServiceCpid = 0x0215;

/// What is in a cage.
enum ESfpModule : std::uint32_t {
    ESfpModule_Empty = 0,
    ESfpModule_Starting = 1, ///< plugged, but cannot be read yet
    ESfpModule_Ready = 2
};

struct SSfpCage {
    std::uint32_t cage;           ///< its number, which is the id of the module in it
    std::uint32_t physicalLinkId; ///< the link that is led to it; 0xFF for none
    std::uint32_t module;         ///< ESfpModule
    std::uint32_t isDetected;     ///< what the latest event of its link has said: 1 or 0
    std::uint32_t eventCount;     ///< events of its link so far
};
static_assert(sizeof(SSfpCage) == 20);

/// "What is plugged?"
struct SSfpShowReq {
    std::uint32_t transactionId;
};

/// The answer; @p cageCount SSfpCage records follow it, by number.
struct SSfpShowResp {
    std::uint32_t transactionId;
    std::uint32_t cageCount;
};

/// "Somebody plugs a module into a cage", or pulls it.
struct SSfpPlugReq {
    std::uint32_t transactionId;
    std::uint32_t cage;
    std::uint32_t isPlugged; ///< 1 or 0: how the cage is to be afterwards
};

enum ESfpPlugStatus : std::uint32_t {
    ESfpPlugStatus_Done = 0,
    ESfpPlugStatus_NoSuchCage = 1,
    ESfpPlugStatus_SoAlready = 2 ///< the cage is full, or empty, as it was to be
};

struct SSfpPlugResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< ESfpPlugStatus
};

using SfpShowReqMsg = vel::hwapi::common::Msg<SSfpShowReq, 0x2161>;
using SfpShowRespMsg = vel::hwapi::common::Msg<SSfpShowResp, 0x2162>;
using SfpPlugReqMsg = vel::hwapi::common::Msg<SSfpPlugReq, 0x2163>;
using SfpPlugRespMsg = vel::hwapi::common::Msg<SSfpPlugResp, 0x2164>;

} // namespace dorn::examples
