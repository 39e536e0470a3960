// SPDX-License-Identifier: MIT
/// @file RedundancyManagerS.hpp
/// The redundancy manager of one unit of a redundant pair.
#pragma once

#include "AaTimer.h"
#include "Mate.hpp"
#include "RedundancyMessages.hpp"
#include "Service.hpp"
#include "ServiceBook.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <vector>

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
///
/// With "--mate=NODE" the unit is half of a pair, whose managers tell each other every #mateHeartbeatTime that they
/// live (message MateHeartbeatMsg, from node to node by address):
///
/// 4. A question goes to the services of both halves, a switch to those of the own half.
/// 5. When the mate was active and falls silent, this half makes itself active.
/// 6. When both are active, as after a cut between them, the one whose time began earlier makes itself standby, and so
///    does one that is between beside an active mate.
class RedundancyManagerS : public vel::hwapi::common::Service {
public:
    RedundancyManagerS();

private:
    /// A question or a switch under way.
    struct Action {
        std::span<const vel::hwapi::common::ERedundancyCommand> commands; ///< those still to be given
        std::optional<EUnitRole> target;                                  ///< nothing: a question
        TAaSysComSicad asker;                                             ///< 0: nobody waits for an answer
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

    unsigned int PreStartup() override;
    void Init() override;
    void HandleRegister(HwapiRedundancyRegisterReqMsg request);
    void HandleAcknowledgement(HwapiRedundancyStateRespMsg acknowledgement);
    void HandleState(ApiRedundancyIndMsg indication);
    void HandleTimeOut(TimeOutMsg timeOut);
    void HandleShow(RedundancyShowReqMsg request);
    void HandleSwitch(RedundancySwitchReqMsg request);
    void HandleHeartbeat(MateHeartbeatMsg heartbeat);

    std::int32_t enter(TAaSysComSicad address, std::uint32_t mode);
    void forget(TAaSysComSicad address);
    void meetMate();
    void armHeartbeat();
    void beat();
    void sendHeartbeat();
    void standInForMate();
    void yieldToMate();
    bool isInTheWrong();
    bool mayDecide();
    bool begin(const Action& action);
    bool beginSwitch(EUnitRole target, TAaSysComSicad asker, std::uint32_t transactionId);
    void giveNextCommand();
    void giveCommandTo(std::map<std::uint32_t, SRedundantService>& services,
                       vel::hwapi::common::ERedundancyCommand command, std::vector<TAaSysComSicad>& unreachable);
    SRedundantService* find(TAaSysComSicad address);
    bool giveCommand(SRedundantService& service, vel::hwapi::common::ERedundancyCommand command);
    void noteState(SRedundantService& service, std::uint32_t state);
    void goOnIfDone();
    void end();
    void endSwitch(EUnitRole target);
    template <class Answer, class Fill>
    void answerTo(TAaSysComSicad asker, std::uint32_t transactionId, const std::vector<SRedundantService>& services,
                  const Fill& fill);
    void showTo(TAaSysComSicad asker, std::uint32_t transactionId);
    void answerSwitch(TAaSysComSicad asker, std::uint32_t transactionId, ERedundancySwitchStatus status);

    ServiceBook m_services;
    EUnitRole m_role = EUnitRole_Standby;
    std::optional<Action> m_action;
    std::uint32_t m_commandCount = 0; ///< transaction id of the latest command
    std::uintptr_t m_actionCount = 0; ///< identity of the latest action's time-out
    std::optional<Mate> m_mate;       ///< nothing: the unit is no half of a pair, or its other half is not known
    std::uint32_t m_term = 0;
    std::uint32_t m_beatsToSend = 0;   ///< before the next heartbeat goes out
    std::uint32_t m_beatsToDecide = 0; ///< before the next switch that nobody has asked for
};

} // namespace dorn::examples
