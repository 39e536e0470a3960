// SPDX-License-Identifier: MIT
/// @file RedundancyTypes.hpp
/// What a service and the redundancy manager of a redundant pair of units say to each other.
///
/// The records are message payloads: 32-bit fields in host byte order. A peer may send values that no enumerator has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::hwapi::common {

/// What a service takes part in.
enum ERedundancyMode : std::uint32_t {
    ERedundancyMode_None = 1, ///< nothing; ends a registration
    ERedundancyMode_RealTime = 2,
    ERedundancyMode_Switchover = 3,
    ERedundancyMode_All = 4
};

/// What the redundancy manager asks or orders.
enum ERedundancyCommand : std::uint32_t {
    ERedundancyCommand_None = 1,
    ERedundancyCommand_CardState = 2,
    ERedundancyCommand_ReplicationState = 3,
    ERedundancyCommand_PrepareStandby = 4,
    ERedundancyCommand_PrepareActive = 5,
    ERedundancyCommand_ReleaseActive = 6,
    ERedundancyCommand_EnableActive = 7,
    ERedundancyCommand_TakeHwLatch = 8,
    ERedundancyCommand_ReleaseHwLatch = 9
};

/// What a service answers.
enum ERedundancyState : std::uint32_t {
    ERedundancyState_Ready = 1,
    ERedundancyState_HwapiFailure = 2,
    ERedundancyState_TesselFailure = 3,
    ERedundancyState_Unfinished = 4,
    ERedundancyState_NoMateCard = 5,
    ERedundancyState_SelfActive = 6,
    ERedundancyState_SelfStandby = 7,
    ERedundancyState_MateActive = 8,
    ERedundancyState_MateStandby = 9,
    ERedundancyState_Timeout = 255
};

/// Message 4016: a service's state after a command.
struct SApiRedundancyInd {
    ERedundancyCommand command;
    ERedundancyState state;
};

/// Message 4017: asks the manager to register a service.
struct SHwapiRedundancyRegisterReq {
    std::uint32_t transactionId;
    ERedundancyMode redundancyMode;
    std::uint32_t clientAddress; ///< a message address; sent as 0
};

/// Message 4018: the manager's answer to message 4017.
struct SHwapiRedundancyRegisterResp {
    std::uint32_t transactionId;
    ERedundancyMode redundancyMode;
    std::uint32_t clientAddress;
    std::int32_t status; ///< 0 on success
};

/// Message 4019: the manager gives a command.
struct SHwapiRedundancyStateReq {
    std::uint32_t transactionId;
    ERedundancyCommand command;
};

/// Message 4020: acknowledges message 4019.
struct SHwapiRedundancyStateResp {
    std::uint32_t transactionId;
    ERedundancyCommand command;
    std::int32_t status; ///< 0 on success
};

static_assert(sizeof(SApiRedundancyInd) == 8);
static_assert(offsetof(SApiRedundancyInd, command) == 0);
static_assert(offsetof(SApiRedundancyInd, state) == 4);

static_assert(sizeof(SHwapiRedundancyRegisterReq) == 12);
static_assert(offsetof(SHwapiRedundancyRegisterReq, transactionId) == 0);
static_assert(offsetof(SHwapiRedundancyRegisterReq, redundancyMode) == 4);
static_assert(offsetof(SHwapiRedundancyRegisterReq, clientAddress) == 8);

static_assert(sizeof(SHwapiRedundancyRegisterResp) == 16);
static_assert(offsetof(SHwapiRedundancyRegisterResp, transactionId) == 0);
static_assert(offsetof(SHwapiRedundancyRegisterResp, redundancyMode) == 4);
static_assert(offsetof(SHwapiRedundancyRegisterResp, clientAddress) == 8);
static_assert(offsetof(SHwapiRedundancyRegisterResp, status) == 12);

static_assert(sizeof(SHwapiRedundancyStateReq) == 8);
static_assert(offsetof(SHwapiRedundancyStateReq, transactionId) == 0);
static_assert(offsetof(SHwapiRedundancyStateReq, command) == 4);

static_assert(sizeof(SHwapiRedundancyStateResp) == 12);
static_assert(offsetof(SHwapiRedundancyStateResp, transactionId) == 0);
static_assert(offsetof(SHwapiRedundancyStateResp, command) == 4);
static_assert(offsetof(SHwapiRedundancyStateResp, status) == 8);

} // namespace vel::hwapi::common
