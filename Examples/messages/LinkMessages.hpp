// SPDX-License-Identifier: MIT
/// @file LinkMessages.hpp
/// What one says to the link service: a look at the baseband links, and what happens to their fibres.
///
/// Every request has one answer, with the request's transaction id.
#pragma once

#include "Msg.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t linkServiceCpid = 0x0216;

/// A link's name, "cpri0"; zeros behind.
using LinkName = std::array<char, 12>;

/// As EBasebandLinkType has them.
enum ELinkStandard : std::uint32_t { ELinkStandard_Obsai = 1, ELinkStandard_Cpri = 2 };

/// What can be broken of a link; bits.
enum ELinkPart : std::uint32_t {
    ELinkPart_Receive = 1,  ///< no light comes from the far end
    ELinkPart_Transmit = 2, ///< no light gets to the far end
    ELinkPart_Framing = 4   ///< light comes from the far end, but no frames that can be made out in it
};
constexpr std::uint32_t allLinkParts = ELinkPart_Receive | ELinkPart_Transmit | ELinkPart_Framing;

/// Conditions of a CPRI link, its own and those that the far end reports; bits.
enum ELinkCondition : std::uint32_t {
    ELinkCondition_Los = 1,        ///< loss of signal
    ELinkCondition_Lof = 2,        ///< loss of frame
    ELinkCondition_RemoteLos = 4,  ///< the far end has lost the signal of this one
    ELinkCondition_RemoteLof = 8,  ///< the far end finds no frames in it
    ELinkCondition_RemoteRai = 16, ///< remote alarm indication
    ELinkCondition_RemoteSdi = 32, ///< SAP defect indication: the far end does not want its payload to be used
    ELinkCondition_RemoteReset = 64
};

/// A link as the service's client knows it from events, except for @p brokenParts.
struct SLink {
    LinkName name;
    std::uint32_t standard;    ///< ELinkStandard
    std::uint32_t uniqueId;    ///< its number on the board
    std::uint32_t brokenParts; ///< ELinkPart
    std::uint32_t rxState;     ///< the standard's ERxLinkState
    std::uint32_t txState;     ///< OBSAI: ETxLinkState; CPRI: 0
    std::uint32_t conditions;  ///< ELinkCondition; OBSAI: 0
    std::int32_t delay;        ///< measured since the link came up last, in periods of 307.2 MHz
    std::uint32_t eventCount;  ///< of all kinds, so far
};
static_assert(sizeof(SLink) == 44);
static_assert(offsetof(SLink, standard) == 12);

/// "How are the links?"
struct SLinkShowReq {
    std::uint32_t transactionId;
};

/// The answer; @p linkCount SLink records follow it.
struct SLinkShowResp {
    std::uint32_t transactionId;
    std::uint32_t linkCount;
};

/// "This happens to a link's fibres."
struct SLinkBreakReq {
    std::uint32_t transactionId;
    LinkName name;
    std::uint32_t brokenParts; ///< ELinkPart: what is broken afterwards; 0 when all has been restored
};
static_assert(sizeof(SLinkBreakReq) == 20);

enum ELinkBreakStatus : std::uint32_t {
    ELinkBreakStatus_Done = 0,
    ELinkBreakStatus_NoSuchLink = 1,
    ELinkBreakStatus_SoAlready = 2, ///< exactly these parts are broken already
    ELinkBreakStatus_BadParts = 3   ///< there is a bit that stands for nothing
};

struct SLinkBreakResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< ELinkBreakStatus
};

using LinkShowReqMsg = vel::hwapi::common::Msg<SLinkShowReq, 0x2171>;
using LinkShowRespMsg = vel::hwapi::common::Msg<SLinkShowResp, 0x2172>;
using LinkBreakReqMsg = vel::hwapi::common::Msg<SLinkBreakReq, 0x2173>;
using LinkBreakRespMsg = vel::hwapi::common::Msg<SLinkBreakResp, 0x2174>;

} // namespace dorn::examples
