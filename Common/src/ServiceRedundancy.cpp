// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaSysLog.h"
#include "hwapiMsgQueue.h"

#include <array>
#include <cstring>

namespace vel::hwapi::common {
namespace {

constexpr TAaSysComCpid redundancyManagerCpid = 0x04E4;
constexpr std::int32_t answerTime = 10000000; // micro-seconds

constexpr const char* nullReceived = "HandleRedundancyStateReqMsg() NULL pointer received. ";
constexpr const char* nullCreated = "HandleRedundancyStateReqMsg() payload NULL. ";

/// A received message whose payload is shorter than its record counts as one without payload.
template <class Message>
Message wholeOrEmpty(void* received)
{
    Message message(received);
    return message.GetPayloadSize() < sizeof(*message.GetPayload()) ? Message(nullptr) : message;
}

} // namespace

bool Service::sendRegistration(ERedundancyMode mode)
{
    HwapiRedundancyRegisterReqMsg request(AaSysComSicadGet(redundancyManagerCpid, AaSysComGetOwnNid()), 0);
    if (!request.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s", nullReceived);
        request.Destroy(); // it may be there without payload
        return false;
    }
    request->transactionId = 0;
    request->redundancyMode = mode;
    request->clientAddress = 0;
    request.SetSender(GetSicad());
    request.Send();
    return true;
}

void Service::RegisterRedundancyService(ERedundancyMode mode)
{
    if (!sendRegistration(mode)) {
        return;
    }
    constexpr std::array<std::uint16_t, 2> onlyTheAnswer{1, HwapiRedundancyRegisterRespMsg::ID};
    void* answer = hwapiMsgQueueReceiveSelective(answerTime, onlyTheAnswer.data());
    if (!answer) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Timeout waiting for HWAPI_REDUNDANCY_REGISTER_RESP_MSG");
        return;
    }
    HandleRedundancyRegisterRespMsg(answer);
    AaSysComMsgDestroy(&answer);
}

void Service::UnRegisterRedundancyService()
{
    sendRegistration(ERedundancyMode_None);
}

void Service::HandleRedundancyRegisterRespMsg(void* msg)
{
    auto answer = wholeOrEmpty<HwapiRedundancyRegisterRespMsg>(msg);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s", nullReceived);
    } else if (answer->status != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Redundancy service registration failed: status = %d ",
                       answer->status);
    } else {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_radId, "Redundancy service registered successfully. ");
    }
}

void Service::HandleRedundancyStateReqMsg(void* msg)
{
    auto request = wholeOrEmpty<HwapiRedundancyStateReqMsg>(msg);
    if (!request.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s", nullReceived);
        return;
    }
    // The manager learns at once that the command has come; the reaction may take its time.
    HwapiRedundancyStateRespMsg answer(request.GetSender(), 0);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s", nullCreated);
        answer.Destroy(); // it may be there without payload
        return;
    }
    answer->transactionId = request->transactionId;
    answer->command = request->command;
    answer->status = 0;
    answer.SetSender(GetSicad());
    answer.Send();

    ERedundancyState state = ERedundancyState_Ready;
    if (HandleRedundancyStateCommand(request->command, &state)) {
        sendRedundancyState(request.GetSender(), request->command, state);
    }
}

void Service::sendRedundancyState(TAaSysComSicad receiver, ERedundancyCommand command, ERedundancyState state)
{
    ApiRedundancyIndMsg indication(receiver, 0);
    if (!indication.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s", nullCreated);
        indication.Destroy(); // it may be there without payload
        return;
    }
    indication->command = command;
    indication->state = state;
    indication.SetSender(GetSicad());
    indication.Send();
}

bool Service::AddRedundancyHandler()
{
    class Delegate : public MsgDelegateBase {
    public:
        explicit Delegate(Service& service) : MsgDelegateBase(HwapiRedundancyStateReqMsg::ID), m_service(service) {}
        void HandleMsg(void* message) override { m_service.HandleRedundancyStateReqMsg(message); }

    private:
        Service& m_service;
    };
    return addOrDrop(std::make_unique<Delegate>(*this));
}

bool Service::isActiveLcp() const
{
    void* value = nullptr;
    std::uint32_t length = 0;
    if (AaConfigTagGet("sys.unit.state.ne-act", &value, &length) != EAaConfigTagStatus_Ok || !value) {
        return false;
    }
    std::uint32_t isActive = 0;
    if (length == sizeof isActive) {
        std::memcpy(&isActive, value, sizeof isActive);
    }
    AaMemUnRefDbg(value, __FILE__, __LINE__);
    return isActive != 0;
}

} // namespace vel::hwapi::common
