// SPDX-License-Identifier: MIT
/// @file ClimateS.hpp
/// The board's temperature and its fan.
#pragma once

#include "AaTimer.h"
#include "BoardThermals.hpp"
#include "ClimateMessages.hpp"
#include "HwapiAlarm.hpp"
#include "LedMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Takes its limits from the board's plan, measures every half second, drives the fan, has the LED service show how
/// warm it is, and raises an alarm when the board gets hot. With the option --redundancy it takes part in switch-overs.
class ClimateS : public vel::hwapi::common::Service {
public:
    ClimateS();

private:
    /// "It is time to measure."
    struct STimeOut {
        const void* identity;
    };
    using TimeOutMsg = vel::hwapi::common::Msg<STimeOut, AA_TIMER_MSG_TIMEOUT>;

    unsigned int PreStartup() override;
    void Init() override;
    bool HandleRedundancyStateCommand(vel::hwapi::common::ERedundancyCommand command,
                                      vel::hwapi::common::ERedundancyState* state) override;
    void HandleTimeOut(TimeOutMsg timeOut);
    void HandleStatusReq(ClimateStatusReqMsg request);
    void HandleLedSetResp(LedSetRespMsg answer);
    void measure();
    void showAlarmLevel();
    void reportHeat();

    BoardThermals m_thermals;
    vel::hwapi::common::HwapiAlarm m_alarm;
    bool m_isHot = false;                         ///< and has been reported
    std::uint32_t m_shownColour = ELedColour_Off; ///< what the LED service has confirmed
    std::uint32_t m_askedColour = ELedColour_Off;
};

} // namespace dorn::examples
