// SPDX-License-Identifier: MIT
#include "RedundancyManagerS.hpp"

#include "AaConfigTag.h"
#include "AaSysLog.h"
#include "OwnUnit.hpp"
#include "RedundancyNames.hpp"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;

constexpr std::array question{ERedundancyCommand_CardState};
constexpr std::array becomeActive{ERedundancyCommand_PrepareActive, ERedundancyCommand_TakeHwLatch,
                                  ERedundancyCommand_EnableActive};
constexpr std::array becomeStandby{ERedundancyCommand_PrepareStandby, ERedundancyCommand_ReleaseActive,
                                   ERedundancyCommand_ReleaseHwLatch};

bool isFailure(std::uint32_t state)
{
    return state == ERedundancyState_HwapiFailure || state == ERedundancyState_TesselFailure ||
           state == ERedundancyState_NoMateCard || state == ERedundancyState_Timeout;
}

bool takesPart(const SRedundantService& service, bool isQuestion)
{
    return isQuestion || service.mode == ERedundancyMode_Switchover || service.mode == ERedundancyMode_All;
}

/// Writes services behind the record of a message that has room for them.
template <class Message>
void append(Message& message, const std::vector<SRedundantService>& services)
{
    if (!services.empty()) {
        std::memcpy(message.GetPayload() + 1, services.data(), services.size() * sizeof(SRedundantService));
    }
}

template <class Record>
int sizeWith(const std::vector<SRedundantService>& services)
{
    return static_cast<int>(sizeof(Record) + services.size() * sizeof(SRedundantService));
}

} // namespace

RedundancyManagerS::RedundancyManagerS()
    : Service("RedundancyManager", redundancyManagerCpid, ERadHwapi_RedS, ERadHwapiState_HwCtrlSState)
{
}

void RedundancyManagerS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&RedundancyManagerS::HandleRegister);
    AddMsgHandler(&RedundancyManagerS::HandleAcknowledgement);
    AddMsgHandler(&RedundancyManagerS::HandleState);
    AddMsgHandler(&RedundancyManagerS::HandleTimeOut);
    AddMsgHandler(&RedundancyManagerS::HandleShow);
    AddMsgHandler(&RedundancyManagerS::HandleSwitch);
    m_services.load(GetRadId());
    m_role = isActiveLcp() ? EUnitRole_Active : EUnitRole_Standby;
}

// -------------------------------------------------------------------------------------------------------- registration

void RedundancyManagerS::HandleRegister(HwapiRedundancyRegisterReqMsg request)
{
    const TAaSysComSicad address = request.GetSender();
    if ((address & 0xFFFFU) == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(),
                       "Registration dropped: its sender has no cpid (0x%08X)", address);
        return;
    }
    if (request->redundancyMode == ERedundancyMode_None) {
        forget(address); // nobody waits for an answer
        return;
    }
    HwapiRedundancyRegisterRespMsg answer(address, 0);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", address);
        return;
    }
    answer->transactionId = request->transactionId;
    answer->redundancyMode = request->redundancyMode;
    answer->clientAddress = address;
    answer->status = enter(address, request->redundancyMode);
    answer.SetSender(GetSicad());
    answer.Send();
}

std::int32_t RedundancyManagerS::enter(TAaSysComSicad address, std::uint32_t mode)
{
    const ERedundancyRegisterStatus status = m_services.add(address, mode);
    const EAaSysLogSeverityLevel severity =
        status == ERedundancyRegisterStatus_Ok ? EAaSysLogSeverityLevel_Info : EAaSysLogSeverityLevel_Error;
    AaSysLogPrintE(severity, GetRadId(), "Service 0x%08X registers for %u %s: status %d", address, mode,
                   nameIn(redundancyModeNames, mode), status);
    if (m_action && m_action->pending.erase(address) != 0) { // it has started anew and knows of no command
        m_action->failed.insert(address);
        goOnIfDone();
    }
    return status;
}

void RedundancyManagerS::forget(TAaSysComSicad address)
{
    if (m_services.remove(address)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Service 0x%08X is no longer registered", address);
    }
    if (m_action && m_action->pending.erase(address) != 0) {
        goOnIfDone();
    }
}

// ------------------------------------------------------------------------------------------------ questions, switches

void RedundancyManagerS::HandleShow(RedundancyShowReqMsg request)
{
    const Action action{question, std::nullopt, request.GetSender(), request->transactionId, 0, {}, {}};
    if (!begin(action)) {
        showTo(action.asker, action.transactionId); // as far as it is known
    }
}

void RedundancyManagerS::HandleSwitch(RedundancySwitchReqMsg request)
{
    const TAaSysComSicad asker = request.GetSender();
    if (request->role != EUnitRole_Active && request->role != EUnitRole_Standby) {
        answerSwitch(asker, request->transactionId, ERedundancySwitchStatus_BadRole);
        return;
    }
    const auto target = static_cast<EUnitRole>(request->role);
    const std::span<const ERedundancyCommand> commands = target == EUnitRole_Active ? becomeActive : becomeStandby;
    if (!begin({commands, target, asker, request->transactionId, 0, {}, {}})) {
        answerSwitch(asker, request->transactionId, ERedundancySwitchStatus_Busy);
    }
}

/// @return false when it is not possible now.
bool RedundancyManagerS::begin(const Action& action)
{
    if (m_action) {
        return false;
    }
    constexpr auto time = std::chrono::microseconds(redundancyAnswerTime).count();
    const TAaTimerId timer = AaTimerArm(time, reinterpret_cast<const void*>(++m_actionCount));
    if (timer == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No timer to wait for the services by");
        return false;
    }
    m_action = action;
    m_action->timer = timer;
    giveNextCommand();
    return true;
}

void RedundancyManagerS::giveNextCommand()
{
    while (!m_action->commands.empty() && m_action->pending.empty() && m_action->failed.empty()) {
        const ERedundancyCommand command = m_action->commands.front();
        m_action->commands = m_action->commands.subspan(1);
        ++m_commandCount;
        std::vector<TAaSysComSicad> unreachable;
        for (auto& [address, service] : m_services.all()) {
            if (takesPart(service, !m_action->target) && !giveCommand(service, command)) {
                unreachable.push_back(address);
            }
        }
        for (const TAaSysComSicad address : unreachable) {
            m_services.remove(address);
            AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(), "Service 0x%08X has gone: forgotten", address);
        }
    }
    if (m_action->pending.empty()) {
        end();
    }
}

/// @return false when the service is not there any more.
bool RedundancyManagerS::giveCommand(SRedundantService& service, ERedundancyCommand command)
{
    service.command = command;
    service.state = 0;
    void* message =
        AaSysComMsgCreate(HwapiRedundancyStateReqMsg::ID, sizeof(SHwapiRedundancyStateReq), service.address);
    if (!message) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory for a command to 0x%08X", service.address);
        m_action->failed.insert(service.address);
        return true;
    }
    const SHwapiRedundancyStateReq request{m_commandCount, command};
    std::memcpy(AaSysComMsgGetPayload(message), &request, sizeof request);
    const std::int32_t status = AaSysComMsgSendS(&message, GetSicad());
    if (status == EAaSysComStatus_NoReceiver || status == EAaSysComStatus_NoRoute) {
        return false;
    }
    if (status == EAaSysComStatus_Ok) {
        m_action->pending.insert(service.address);
    } else {
        noteState(service, ERedundancyState_Timeout); // it does not take its messages
    }
    return true;
}

void RedundancyManagerS::HandleAcknowledgement(HwapiRedundancyStateRespMsg acknowledgement)
{
    if (acknowledgement->status == 0) {
        return; // the state is still to come
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "Service 0x%08X refuses %u %s: status %d",
                   acknowledgement.GetSender(), acknowledgement->command,
                   nameIn(redundancyCommandNames, acknowledgement->command), acknowledgement->status);
    if (m_action && acknowledgement->transactionId == m_commandCount &&
        m_action->pending.erase(acknowledgement.GetSender()) != 0) {
        m_action->failed.insert(acknowledgement.GetSender());
        goOnIfDone();
    }
}

void RedundancyManagerS::HandleState(ApiRedundancyIndMsg indication)
{
    const TAaSysComSicad address = indication.GetSender();
    SRedundantService* const service = m_services.find(address);
    if (!service || service->command != indication->command) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, GetRadId(),
                       "State %u after command %u of 0x%08X dropped: nobody asked for it", indication->state,
                       indication->command, address);
        return;
    }
    noteState(*service, indication->state);
    if (m_action && indication->state != ERedundancyState_Unfinished && m_action->pending.erase(address) != 0) {
        goOnIfDone();
    }
}

void RedundancyManagerS::noteState(SRedundantService& service, std::uint32_t state)
{
    service.state = state;
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Service 0x%08X after %s: %u %s", service.address,
                   nameIn(redundancyCommandNames, service.command), state, redundancyStateName(state));
    if (m_action && m_action->target && isFailure(state)) {
        m_action->failed.insert(service.address);
    }
}

void RedundancyManagerS::HandleTimeOut(TimeOutMsg timeOut)
{
    if (!m_action || timeOut->identity != reinterpret_cast<const void*>(m_actionCount)) {
        return; // of an action that has ended
    }
    for (const TAaSysComSicad address : std::exchange(m_action->pending, {})) {
        if (SRedundantService* const service = m_services.find(address)) {
            noteState(*service, ERedundancyState_Timeout);
        }
    }
    end();
}

void RedundancyManagerS::goOnIfDone()
{
    if (m_action->pending.empty()) {
        giveNextCommand();
    }
}

void RedundancyManagerS::end()
{
    AaTimerCancel(m_action->timer);
    if (m_action->target) {
        endSwitch(*m_action->target);
    } else {
        showTo(m_action->asker, m_action->transactionId);
    }
    m_action.reset();
}

void RedundancyManagerS::endSwitch(EUnitRole target)
{
    const bool isDone = m_action->failed.empty() && m_action->commands.empty();
    m_role = isDone ? target : EUnitRole_Between;
    if (isDone) {
        AaConfigTagSetU32(activeUnitTag, target == EUnitRole_Active ? 1 : 0);
    }
    AaSysLogPrintE(isDone ? EAaSysLogSeverityLevel_Info : EAaSysLogSeverityLevel_Error, GetRadId(), "Switch to %s %s",
                   unitRoleNames[target], isDone ? "done" : "failed");
    answerSwitch(m_action->asker, m_action->transactionId,
                 isDone ? ERedundancySwitchStatus_Done : ERedundancySwitchStatus_Failed);
}

// ------------------------------------------------------------------------------------------------------------- answers

void RedundancyManagerS::showTo(TAaSysComSicad asker, std::uint32_t transactionId)
{
    const std::vector<SRedundantService> services = m_services.list();
    RedundancyShowRespMsg answer(asker, sizeWith<SRedundancyShowResp>(services));
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", asker);
        return;
    }
    answer->transactionId = transactionId;
    answer->role = m_role;
    answer->serviceCount = static_cast<std::uint32_t>(services.size());
    append(answer, services);
    answer.SetSender(GetSicad());
    answer.Send();
}

void RedundancyManagerS::answerSwitch(TAaSysComSicad asker, std::uint32_t transactionId, ERedundancySwitchStatus status)
{
    std::vector<SRedundantService> failed;
    if (status == ERedundancySwitchStatus_Failed) {
        for (const TAaSysComSicad address : m_action->failed) {
            if (const SRedundantService* const service = m_services.find(address)) {
                failed.push_back(*service);
            }
        }
    }
    RedundancySwitchRespMsg answer(asker, sizeWith<SRedundancySwitchResp>(failed));
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "No memory to answer 0x%08X", asker);
        return;
    }
    answer->transactionId = transactionId;
    answer->status = status;
    answer->role = m_role;
    answer->serviceCount = static_cast<std::uint32_t>(failed.size());
    append(answer, failed);
    answer.SetSender(GetSicad());
    answer.Send();
}

} // namespace dorn::examples
