// SPDX-License-Identifier: MIT
#include "FaultManagerS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "FaultNames.hpp"
#include "OwnUnit.hpp"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace dorn::examples {
namespace {

std::uint64_t now()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count());
}

std::size_t bytesOf(const std::vector<SAlarm>& alarms)
{
    return alarms.size() * sizeof(SAlarm);
}

} // namespace

FaultManagerS::FaultManagerS()
    : Service("FaultManager", faultManagerCpid, ERadHwapi_ALRM, ERadHwapiState_AlarmState),
      m_alarms([this](EAlarmEvent event, const SAlarm& alarm) { onChange(event, alarm); })
{
}

void FaultManagerS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&FaultManagerS::HandleFault);
    AddMsgHandler(&FaultManagerS::HandleList);
    AddMsgHandler(&FaultManagerS::HandleClear);
    AddMsgHandler(&FaultManagerS::HandleSubscribe);
}

void FaultManagerS::HandleFault(FaultIndMsg fault)
{
    const std::size_t room = fault.GetPayloadSize() - sizeof(*fault.GetPayload());
    if (fault->detailSize > room) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(),
                       "Fault dropped: %u detail bytes told, %zu there (fault=%u sender=0x%08X)", fault->detailSize,
                       room, fault->faultId, fault.GetSender());
        return;
    }
    const auto* const details = reinterpret_cast<const std::uint8_t*>(fault.GetPayload() + 1);
    m_alarms.report({fault->faultId, fault->boardNumber, fault.GetSender(), {details, fault->detailSize}}, now());
}

void FaultManagerS::onChange(EAlarmEvent event, const SAlarm& alarm)
{
    const EAaSysLogSeverityLevel severity =
        event == EAlarmEvent_Raised ? EAaSysLogSeverityLevel_Warning : EAaSysLogSeverityLevel_Info;
    AaSysLogPrintE(severity, GetRadId(), "Alarm %u %s: fault %u %s, board %u, sender 0x%08X, count %u, %s",
                   alarm.number, nameIn(alarmEventNames, event), alarm.faultId, nameIn(faultNames, alarm.faultId),
                   alarm.boardNumber, alarm.sender, alarm.count, nameIn(alarmStateNames, alarm.state));
    tellSubscribers(event, alarm);
}

void FaultManagerS::HandleList(AlarmListReqMsg request)
{
    const std::size_t size = bytesOf(m_alarms.active()) + bytesOf(m_alarms.past());
    answerTo<AlarmListRespMsg>(request, *this, size, [&](AlarmListRespMsg answer) {
        answer->activeCount = static_cast<std::uint32_t>(m_alarms.active().size());
        answer->pastCount = static_cast<std::uint32_t>(m_alarms.past().size());
        auto* const alarms = reinterpret_cast<std::byte*>(answer.GetPayload() + 1);
        if (!m_alarms.active().empty()) {
            std::memcpy(alarms, m_alarms.active().data(), bytesOf(m_alarms.active()));
        }
        if (!m_alarms.past().empty()) {
            std::memcpy(alarms + bytesOf(m_alarms.active()), m_alarms.past().data(), bytesOf(m_alarms.past()));
        }
    });
}

void FaultManagerS::HandleClear(AlarmClearReqMsg request)
{
    answerTo<AlarmClearRespMsg>(request, *this, [&](AlarmClearRespMsg answer) {
        answer->clearedCount = m_alarms.clear(request->number, now());
    });
}

void FaultManagerS::HandleSubscribe(AlarmSubscribeReqMsg request)
{
    answerTo<AlarmSubscribeRespMsg>(request, *this, [&](AlarmSubscribeRespMsg answer) {
        if (request->isWanted == 0) {
            std::erase(m_subscribers, request.GetSender());
        } else {
            answer->status = addSubscriber(request.GetSender()) ? 0 : 1;
        }
    });
}

bool FaultManagerS::addSubscriber(TAaSysComSicad subscriber)
{
    if (std::find(m_subscribers.begin(), m_subscribers.end(), subscriber) != m_subscribers.end()) {
        return true;
    }
    if (m_subscribers.size() == maxSubscribers) {
        tellSubscribers(EAlarmEvent_None, {}); // forgets those that are gone
    }
    if (m_subscribers.size() == maxSubscribers) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(), "Subscriber 0x%08X refused: there are %zu already",
                       subscriber, maxSubscribers);
        return false;
    }
    m_subscribers.push_back(subscriber);
    return true;
}

void FaultManagerS::tellSubscribers(EAlarmEvent event, const SAlarm& alarm)
{
    std::erase_if(m_subscribers, [&](TAaSysComSicad subscriber) {
        if (sendEvent(subscriber, event, alarm)) {
            return false;
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Subscriber 0x%08X forgotten", subscriber);
        return true;
    });
}

bool FaultManagerS::sendEvent(TAaSysComSicad receiver, EAlarmEvent event, const SAlarm& alarm)
{
    void* message = AaSysComMsgCreate(AlarmEventIndMsg::ID, sizeof(SAlarmEventInd), receiver);
    if (!message) {
        return true; // it has missed one, but lives
    }
    const SAlarmEventInd indication{event, 0, alarm};
    std::memcpy(AaSysComMsgGetPayload(message), &indication, sizeof indication);
    return AaSysComMsgSendS(&message, GetSicad()) == EAaSysComStatus_Ok;
}

} // namespace dorn::examples
