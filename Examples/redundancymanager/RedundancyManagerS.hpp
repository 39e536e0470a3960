// SPDX-License-Identifier: MIT
/// @file RedundancyManagerS.hpp
/// The redundancy manager of one unit of a redundant pair.
#pragma once

#include "AaTimer.h"
#include "RedundancyMessages.hpp"
#include "Service.hpp"
#include "ServiceBook.hpp"

#include <cstdint>
#include <optional>
#include <set>
#include <span>

namespace dorn::examples {

/// Registers services, asks for their states and leads them through a switch-over; see RedundancyMessages.hpp.
///
/// 1. A question or a switch gives its commands one after the other (messages 4019) to all services that take part: a
///    question to all, a switch to those of mode `ERedundancyMode_Switchover` and `ERedundancyMode_All`.
/// 2. A command is done when every service has told its state (message 4016); `ERedundancyState_Unfinished` means that
///    it will tell again. A switch stops at the first command at which a service fails.
/// 3. Who has not answered when the time is up has the state `ERedundancyState_Timeout`. Who cannot be reached at all
///    is forgotten.
///
/// One question or switch is under way at a time. A switch that has succeeded sets the tag "sys.unit.state.ne-act".
class RedundancyManagerS : public vel::hwapi::common::Service {
public:
    RedundancyManagerS();

private:
    /// A question or a switch under way.
    struct Action {
        std::span<const vel::hwapi::common::ERedundancyCommand> commands; ///< those still to be given
        std::optional<EUnitRole> target;                                  ///< nothing: a question
        TAaSysComSicad asker;
        std::uint32_t transactionId;
        TAaTimerId timer;
        std::set<TAaSysComSicad> pending; ///< services that have not told their state yet
        std::set<TAaSysComSicad> failed;
    };

    /// "The time is up."
    struct STimeOut {
        const void* identity;
    };
    using TimeOutMsg = vel::hwapi::common::Msg<STimeOut, AA_TIMER_MSG_TIMEOUT>;

    void Init() override;
    void HandleRegister(HwapiRedundancyRegisterReqMsg request);
    void HandleAcknowledgement(HwapiRedundancyStateRespMsg acknowledgement);
    void HandleState(ApiRedundancyIndMsg indication);
    void HandleTimeOut(TimeOutMsg timeOut);
    void HandleShow(RedundancyShowReqMsg request);
    void HandleSwitch(RedundancySwitchReqMsg request);

    std::int32_t enter(TAaSysComSicad address, std::uint32_t mode);
    void forget(TAaSysComSicad address);
    bool begin(const Action& action);
    void giveNextCommand();
    bool giveCommand(SRedundantService& service, vel::hwapi::common::ERedundancyCommand command);
    void noteState(SRedundantService& service, std::uint32_t state);
    void goOnIfDone();
    void end();
    void endSwitch(EUnitRole target);
    void showTo(TAaSysComSicad asker, std::uint32_t transactionId);
    void answerSwitch(TAaSysComSicad asker, std::uint32_t transactionId, ERedundancySwitchStatus status);

    ServiceBook m_services;
    EUnitRole m_role = EUnitRole_Standby;
    std::optional<Action> m_action;
    std::uint32_t m_commandCount = 0; ///< transaction id of the latest command
    std::uintptr_t m_actionCount = 0; ///< identity of the latest action's time-out
};

} // namespace dorn::examples
