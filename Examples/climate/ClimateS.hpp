// SPDX-License-Identifier: MIT
/// @file ClimateS.hpp
/// The board's temperature and its fan.
#pragma once

#include "AaTimer.h"
#include "BoardThermals.hpp"
#include "ClimateMessages.hpp"
#include "LedMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

/// Measures every half second, drives the fan, and has the LED service show how warm it is.
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
    void HandleTimeOut(TimeOutMsg timeOut);
    void HandleStatusReq(ClimateStatusReqMsg request);
    void HandleLedSetResp(LedSetRespMsg answer);
    void measure();
    void showAlarmLevel();

    BoardThermals m_thermals;
    std::uint32_t m_shownColour = ELedColour_Off; ///< what the LED service has confirmed
    std::uint32_t m_askedColour = ELedColour_Off;
};

} // namespace dorn::examples
