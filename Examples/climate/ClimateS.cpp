// SPDX-License-Identifier: MIT
#include "ClimateS.hpp"

#include "AaConfigTag.h"
#include "AaSysLog.h"
#include "ClimatePlan.hpp"
#include "OwnUnit.hpp"

#include <array>
#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::common;

namespace {

constexpr std::int64_t measuringPeriod = 500000; // micro-seconds
constexpr std::uint32_t defaultAmbient = 25;
constexpr std::array<std::uint32_t, 3> colourOfLevel{ELedColour_Green, ELedColour_Amber, ELedColour_Red};

} // namespace

ClimateS::ClimateS()
    : Service("ClimateS", climateServiceCpid, ERadHwapi_ClimateS, ERadHwapiState_ClimateState),
      m_alarm(climateServiceCpid, ERadHwapi_ClimateS)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n"
                                        "--redundancy Take part in switch-overs\n");
}

unsigned int ClimateS::PreStartup()
{
    SetVerbose(GetArgumentParser().ReadArgument("v") == "arg on" ? 1 : 0);
    return 1;
}

void ClimateS::Init()
{
    logOwnUnit(GetRadId());
    m_thermals.setLimits(plannedLimits(m_thermals.limits()));
    AddMsgHandler(&ClimateS::HandleTimeOut);
    AddMsgHandler(&ClimateS::HandleStatusReq);
    AddMsgHandler(&ClimateS::HandleLedSetResp);
    if (AaTimerArm(measuringPeriod, this) == 0) {
        throw InitFailedException("No timer to measure by", __FILE__, __LINE__);
    }
    if (GetArgumentParser().ReadArgument("redundancy") == "arg on") {
        AddRedundancyHandler();
        RegisterRedundancyService(ERedundancyMode_All);
    }
}

bool ClimateS::HandleRedundancyStateCommand(ERedundancyCommand command, ERedundancyState* state)
{
    if (command == ERedundancyCommand_CardState) {
        *state = isActiveLcp() ? ERedundancyState_SelfActive : ERedundancyState_SelfStandby;
        return true;
    }
    return Service::HandleRedundancyStateCommand(command, state); // both units keep cool: there is nothing to prepare
}

void ClimateS::HandleTimeOut(TimeOutMsg)
{
    measure();
    AaTimerArm(measuringPeriod, this);
}

void ClimateS::measure()
{
    std::uint32_t ambient = defaultAmbient;
    AaConfigTagGetU32(ambientTag, &ambient);
    m_thermals.step(static_cast<std::int32_t>(ambient));
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, GetRadId(), "Board %d C, air %u C, fan %u %%",
                   m_thermals.temperature(), ambient, m_thermals.fanPercent());
    showAlarmLevel();
    reportHeat();
}

void ClimateS::reportHeat()
{
    const bool wasHot = std::exchange(m_isHot, m_thermals.isHot());
    if (!m_isHot || wasHot) {
        return;
    }
    const std::int32_t temperature = m_thermals.temperature();
    try {
        m_alarm.sendAlarmMsg(EFaultId_BoardOverheated, &temperature, sizeof temperature);
    } catch (const HwapiAlarm::MsgSendingException& failure) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "Heat not reported: %s",
                       failure.getDescription().c_str());
        m_isHot = false; // tried again at the next measurement
    }
}

void ClimateS::showAlarmLevel()
{
    const std::uint32_t colour = colourOfLevel[m_thermals.alarmLevel()];
    if (colour == m_shownColour) {
        return;
    }
    // Asked again every period until it is confirmed, so that an LED service that starts later catches up.
    LedSetReqMsg request(AaSysComSicadGet(ledServiceCpid, AaSysComGetOwnNid()), 0);
    if (request.GetPayload()) {
        request->led = EFrontLed_Climate;
        request->colour = colour;
        m_askedColour = colour;
        request.SetSender(GetSicad());
        request.Send();
    }
}

void ClimateS::HandleLedSetResp(LedSetRespMsg answer)
{
    if (answer->status != 0 || answer->colour != m_askedColour) {
        return;
    }
    m_shownColour = answer->colour;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Climate LED changed from %u to %u", answer->previousColour,
                   answer->colour);
}

void ClimateS::HandleStatusReq(ClimateStatusReqMsg request)
{
    ClimateStatusRespMsg answer(request.GetSender(), 0);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", request.GetSender());
        return;
    }
    answer->transactionId = request->transactionId;
    answer->temperature = m_thermals.temperature();
    answer->fanPercent = m_thermals.fanPercent();
    answer->alarmLevel = m_thermals.alarmLevel();
    answer.SetSender(GetSicad());
    answer.Send();
}

} // namespace dorn::examples
