// SPDX-License-Identifier: MIT
/// @file RedundancyMessages.hpp
/// What an operator's program says to the redundancy manager, and the managers of a pair to each other. What services
/// say to it is in RedundancyTypes.hpp.
///
/// Every request has one answer, with the request's transaction id. It comes within #redundancyAnswerTime, because no
/// service is waited for longer than that.
#pragma once

#include "Msg.hpp"
#include "RedundancyTypes.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace dorn::examples {

constexpr std::uint16_t redundancyManagerCpid = 0x04E4;

/// How long the manager waits for all services together, whether it asks or switches.
constexpr std::chrono::milliseconds redundancyAnswerTime{1000};

/// Services beyond these are refused with ERedundancyRegisterStatus_TooManyServices.
constexpr std::size_t maxRedundantServices = 32;

/// Configuration tag, 4 bytes: 1 on the active unit, 0 on a standby unit. Service::isActiveLcp() reads it.
constexpr const char* activeUnitTag = "sys.unit.state.ne-act";

/// Configuration tag: who is registered, as SRedundancyRegistration records, for a manager that comes back.
constexpr const char* registrationsTag = "dorn.redundancy.services";

/// How often the manager of a half tells the other half's manager that it lives.
constexpr std::chrono::milliseconds mateHeartbeatTime{100};

/// A half of which so many heartbeats in a row have not come is taken for dead.
constexpr std::uint32_t mateHeartbeatsToMiss = 5;

/// How long a half whose own decision to switch has come to nothing waits before it tries again.
constexpr std::chrono::milliseconds decisionRetryTime{1000};

/// Configuration tag, 4 bytes: the term of a half's latest time as the active one.
constexpr const char* termTag = "dorn.redundancy.term";

struct SRedundancyRegistration {
    std::uint32_t address;
    std::uint32_t mode; ///< ERedundancyMode
};
static_assert(sizeof(SRedundancyRegistration) == 8);

/// Status in the answer to a registration (message 4018).
enum ERedundancyRegisterStatus : std::int32_t {
    ERedundancyRegisterStatus_Ok = 0,
    ERedundancyRegisterStatus_UnknownMode = 1,
    ERedundancyRegisterStatus_TooManyServices = 2
};

enum EUnitRole : std::uint32_t {
    EUnitRole_Standby = 0,
    EUnitRole_Active = 1,
    EUnitRole_Between = 2 ///< a switch has stopped half-way
};

/// What a registered service last said.
struct SRedundantService {
    std::uint32_t address;
    std::uint32_t mode;    ///< ERedundancyMode
    std::uint32_t command; ///< ERedundancyCommand that it was given last; 0 before the first
    std::uint32_t state;   ///< ERedundancyState; 0 while nothing is known
};
static_assert(sizeof(SRedundantService) == 16);

/// "How are you all?" The manager asks every service for its card state first, unless it is switching.
struct SRedundancyShowReq {
    std::uint32_t transactionId;
};

/// The answer; @p serviceCount SRedundantService records follow it, by address.
struct SRedundancyShowResp {
    std::uint32_t transactionId;
    std::uint32_t role; ///< EUnitRole
    std::uint32_t serviceCount;
};
static_assert(sizeof(SRedundancyShowResp) == 12);

/// "Make this unit active", or standby.
struct SRedundancySwitchReq {
    std::uint32_t transactionId;
    std::uint32_t role; ///< EUnitRole_Active or EUnitRole_Standby
};

enum ERedundancySwitchStatus : std::uint32_t {
    ERedundancySwitchStatus_Done = 0,
    ERedundancySwitchStatus_Failed = 1, ///< a service failed: its record follows
    ERedundancySwitchStatus_Busy = 2,   ///< another switch or question is under way
    ERedundancySwitchStatus_BadRole = 3
};

/// The answer, when the switch has ended; with ERedundancySwitchStatus_Failed a SRedundantService record follows for
/// each service that failed or did not answer in time.
struct SRedundancySwitchResp {
    std::uint32_t transactionId;
    std::uint32_t status; ///< ERedundancySwitchStatus
    std::uint32_t role;   ///< EUnitRole now
    std::uint32_t serviceCount;
};
static_assert(sizeof(SRedundancySwitchResp) == 16);

/// "I live." From one half's manager to the other's every #mateHeartbeatTime; @p serviceCount SRedundancyRegistration
/// records follow: the services that are registered with the sender. There is no answer.
struct SMateHeartbeat {
    std::uint32_t role; ///< EUnitRole
    std::uint32_t term; ///< grows by one with each half that becomes active: of two active halves the later one stays
    std::uint32_t serviceCount;
};
static_assert(sizeof(SMateHeartbeat) == 12);

using RedundancyShowReqMsg = vel::hwapi::common::Msg<SRedundancyShowReq, 0x2131>;
using RedundancyShowRespMsg = vel::hwapi::common::Msg<SRedundancyShowResp, 0x2132>;
using RedundancySwitchReqMsg = vel::hwapi::common::Msg<SRedundancySwitchReq, 0x2133>;
using RedundancySwitchRespMsg = vel::hwapi::common::Msg<SRedundancySwitchResp, 0x2134>;
using MateHeartbeatMsg = vel::hwapi::common::Msg<SMateHeartbeat, 0x2135>;

} // namespace dorn::examples
