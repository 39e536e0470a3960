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
    ERedundancyMode_None = 1,       ///< nothing; ends a registration
    ERedundancyMode_RealTime = 2,   ///< real-time redundancy
    ERedundancyMode_Switchover = 3, ///< switch-overs
    ERedundancyMode_All = 4         ///< both
};

/// What the redundancy manager asks or orders.
enum ERedundancyCommand : std::uint32_t {
    ERedundancyCommand_None = 1,             ///< asks for nothing
    ERedundancyCommand_CardState = 2,        ///< asks for the state of the unit
    ERedundancyCommand_ReplicationState = 3, ///< asks how the replication goes
    ERedundancyCommand_PrepareStandby = 4,   ///< get ready to stand by
    ERedundancyCommand_PrepareActive = 5,    ///< get ready to take over
    ERedundancyCommand_ReleaseActive = 6,    ///< give the active part up
    ERedundancyCommand_EnableActive = 7,     ///< take the active part
    ERedundancyCommand_TakeHwLatch = 8,      ///< take the hardware latch
    ERedundancyCommand_ReleaseHwLatch = 9    ///< give the hardware latch up
};

/// What a service answers.
enum ERedundancyState : std::uint32_t {
    ERedundancyState_Ready = 1,         ///< the command has been carried out
    ERedundancyState_HwapiFailure = 2,  ///< a hardware service failed
    ERedundancyState_TesselFailure = 3, ///< a Tessel service failed
    ERedundancyState_Unfinished = 4,    ///< still at it
    ERedundancyState_NoMateCard = 5,    ///< there is no other unit
    ERedundancyState_SelfActive = 6,    ///< this unit is the active one
    ERedundancyState_SelfStandby = 7,   ///< this unit stands by
    ERedundancyState_MateActive = 8,    ///< the other unit is the active one
    ERedundancyState_MateStandby = 9,   ///< the other unit stands by
    ERedundancyState_Timeout = 255      ///< nobody answered in time
};

/// Message 4016: a service's state after a command.
struct SApiRedundancyInd {
    /// The command that has been carried out.
    ERedundancyCommand command;
    /// What the service is now.
    ERedundancyState state;
};

/// Message 4017: asks the manager to register a service.
struct SHwapiRedundancyRegisterReq {
    /// Chosen by the sender; the answer bears the same.
    std::uint32_t transactionId;
    /// How the service takes part in switch-overs.
    ERedundancyMode redundancyMode;
    std::uint32_t clientAddress; ///< a message address; sent as 0
};

/// Message 4018: the manager's answer to message 4017.
struct SHwapiRedundancyRegisterResp {
    /// As in the request.
    std::uint32_t transactionId;
    /// As in the request.
    ERedundancyMode redundancyMode;
    /// As in the request.
    std::uint32_t clientAddress;
    std::int32_t status; ///< 0 on success
};

/// Message 4019: the manager gives a command.
struct SHwapiRedundancyStateReq {
    /// Chosen by the manager; the acknowledgement bears the same.
    std::uint32_t transactionId;
    /// What the service is to become.
    ERedundancyCommand command;
};

/// Message 4020: acknowledges message 4019.
struct SHwapiRedundancyStateResp {
    /// As in the request.
    std::uint32_t transactionId;
    /// As in the request.
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
