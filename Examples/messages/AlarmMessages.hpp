// SPDX-License-Identifier: MIT
/// @file AlarmMessages.hpp
/// What one says to the fault manager.
///
/// Services report faults with HwapiAlarm. An operator's program asks for the alarms that have become of them, clears
/// them, or subscribes and is told of each change. Every request has one answer, with the request's transaction id.
#pragma once

#include "HwapiAlarm.hpp"
#include "Msg.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t faultManagerCpid = 0x04C1;

/// What the fault manager keeps: one more active alarm displaces the one unseen for longest, one more past alarm the
/// oldest.
constexpr std::size_t maxActiveAlarms = 64;
constexpr std::size_t maxPastAlarms = 64;

enum EAlarmState : std::uint32_t {
    EAlarmState_Active = 1,   ///< nobody has said that the fault is over
    EAlarmState_Cleared = 2,  ///< past: an operator has cleared it
    EAlarmState_Displaced = 3 ///< past: the longest unseen of too many active ones made room for a new one
};

/// An alarm: a fault of one board, reported by one sender.
struct SAlarm {
    std::uint32_t number;      ///< 1 for the first; no two alarms have the same
    std::uint32_t state;       ///< EAlarmState
    std::uint32_t faultId;     ///< EFaultId
    std::uint32_t boardNumber; ///< as reported
    std::uint32_t sender;      ///< address of who reported it
    std::uint32_t count;       ///< how often it was reported while it was active
    std::uint64_t raised;      ///< first report; micro-seconds since 1970
    std::uint64_t reported;    ///< latest report
    std::uint64_t ended;       ///< when it became past; 0 while it is active
    std::uint32_t detailSize;  ///< of the latest report
    std::uint32_t unused;
    std::array<std::uint8_t, 64> details; ///< of the latest report, as far as they fit; zeros behind

    /// How many of the detail bytes are here.
    std::size_t detailsHere() const { return detailSize < details.size() ? detailSize : details.size(); }
};
static_assert(sizeof(SAlarm) == 120);
static_assert(offsetof(SAlarm, sender) == 16);
static_assert(offsetof(SAlarm, raised) == 24);
static_assert(offsetof(SAlarm, ended) == 40);
static_assert(offsetof(SAlarm, detailSize) == 48);
static_assert(offsetof(SAlarm, details) == 56);

/// "Which alarms are there?"
struct SAlarmListReq {
    std::uint32_t transactionId;
};

/// The answer; @p activeCount active alarms follow it, then @p pastCount past ones, each kind with the oldest first.
struct SAlarmListResp {
    std::uint32_t transactionId;
    std::uint32_t activeCount;
    std::uint32_t pastCount;
    std::uint32_t unused;
};
static_assert(sizeof(SAlarmListResp) == 16);
static_assert(sizeof(SAlarmListResp) + (maxActiveAlarms + maxPastAlarms) * sizeof(SAlarm) <= AA_SYS_COM_MAX_PAYLOAD);

/// "The fault is over."
struct SAlarmClearReq {
    std::uint32_t transactionId;
    std::uint32_t number; ///< of an active alarm; 0 for all of them
};

struct SAlarmClearResp {
    std::uint32_t transactionId;
    std::uint32_t clearedCount; ///< alarms that have become past
};

/// "Tell me of every change from now on", or no more.
struct SAlarmSubscribeReq {
    std::uint32_t transactionId;
    std::uint32_t isWanted; ///< 1 or 0
};

struct SAlarmSubscribeResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< 0; 1 when there are too many subscribers
};

enum EAlarmEvent : std::uint32_t {
    EAlarmEvent_None = 0, ///< nothing has happened: the manager looks whether the subscriber lives
    EAlarmEvent_Raised = 1,
    EAlarmEvent_Repeated = 2, ///< an active alarm was reported again
    EAlarmEvent_Ended = 3     ///< the alarm's state tells why
};

/// A change, for the subscribers.
struct SAlarmEventInd {
    std::uint32_t event; ///< EAlarmEvent
    std::uint32_t unused;
    SAlarm alarm; ///< as it is now; all zeros without an event
};
static_assert(sizeof(SAlarmEventInd) == 128);
static_assert(offsetof(SAlarmEventInd, alarm) == 8);

using FaultIndMsg = vel::hwapi::common::Msg<vel::hwapi::common::SHwapiFaultInd, 11140>;
using AlarmListReqMsg = vel::hwapi::common::Msg<SAlarmListReq, 0x2121>;
using AlarmListRespMsg = vel::hwapi::common::Msg<SAlarmListResp, 0x2122>;
using AlarmClearReqMsg = vel::hwapi::common::Msg<SAlarmClearReq, 0x2123>;
using AlarmClearRespMsg = vel::hwapi::common::Msg<SAlarmClearResp, 0x2124>;
using AlarmSubscribeReqMsg = vel::hwapi::common::Msg<SAlarmSubscribeReq, 0x2125>;
using AlarmSubscribeRespMsg = vel::hwapi::common::Msg<SAlarmSubscribeResp, 0x2126>;
using AlarmEventIndMsg = vel::hwapi::common::Msg<SAlarmEventInd, 0x2127>;

} // namespace dorn::examples
