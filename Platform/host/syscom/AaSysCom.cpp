// SPDX-License-Identifier: MIT
#include "AaSysCom.h"

#include "AaSysLog.h"
#include "eu/Eu.hpp"
#include "node/PerNode.hpp"
#include "port/CancellationOff.hpp"
#include "syscom/CpidRegistry.hpp"
#include "syscom/MessageTap.hpp"
#include "syscom/Node.hpp"
#include "syscom/Post.hpp"

#include <exception>
#include <memory>
#include <span>
#include <utility>

namespace dorn::host {
namespace {

Message* asMessage(void* handle)
{
    return static_cast<Message*>(handle);
}

const FrameHeader* headerOf(const void* handle)
{
    return handle ? &static_cast<const Message*>(handle)->header : nullptr;
}

const char* reasonOf(EAaSysComStatus status)
{
    switch (status) {
    case EAaSysComStatus_NoReceiver:
        return "nobody holds the receiver's cpid";
    case EAaSysComStatus_NoRoute:
        return "there is no way to the receiver's node";
    case EAaSysComStatus_QueueFull:
        return "the receiver's queue stayed full";
    default:
        return "resources ran out";
    }
}

EAaSysComStatus sendOwned(std::unique_ptr<Message, MessageDeleter> message)
{
    if (MessageTap::isWatched()) {
        if (MessageTap* const tap = PerNode<MessageTap>::ifOpen()) {
            tap->show(*message);
        }
    }
    const FrameHeader header = message->header;
    const EAaSysComStatus status = post(message, backPressureTime);
    if (status != EAaSysComStatus_Ok) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "Message not sent: %s (id=0x%04X receiver=0x%08X sender=0x%08X)",
                      reasonOf(status), header.id, header.receiver, header.sender);
    }
    return status;
}

void* receive(int32_t timeout, const std::span<const std::uint16_t>* filter)
{
    Eu* const eu = eus::current();
    const Deadline until = timeout == AA_NO_WAIT ? Deadline(0) : Clock::get().after(timeout);
    try {
        return eu ? eu->queue.receive(until, filter) : nullptr;
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Nothing received: %s", error.what());
        return nullptr;
    }
}

} // namespace
} // namespace dorn::host

using namespace dorn::host;

TAaSysComCpid AaSysComUserRegister(TAaSysComCpid cpid, TAaProEuId euId)
{
    const CancellationOff off; // not a wait
    try {
        PerNode<MessageTap>::get();
        return PerNode<CpidRegistry>::get().acquire(cpid, euId);
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "cpid 0x%04X is not granted: %s", cpid, error.what());
        return 0;
    }
}

int32_t AaSysComUserDeregister(TAaSysComCpid cpid)
{
    const CancellationOff off; // not a wait
    CpidRegistry* const registry = PerNode<CpidRegistry>::ifOpen();
    return registry && registry->release(cpid) ? 0 : 1;
}

void* AaSysComMsgCreate(TAaSysComMsgId id, uint16_t payloadSize, TAaSysComSicad receiver)
{
    const Eu* const eu = eus::currentIfAny();
    const TAaSysComCpid cpid = eu ? eu->firstCpid.load(std::memory_order_relaxed) : TAaSysComCpid{0};
    const TAaSysComSicad sender = cpid != 0 ? AaSysComSicadGet(cpid, idInAddresses(AaSysComGetOwnNid())) : 0;
    return Message::create(id, payloadSize, sender, receiver);
}

int32_t AaSysComMsgSend(void** message)
{
    if (!message || !*message) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Message not sent: there is none (sent or destroyed before?)");
        return EAaSysComStatus_NoMessage;
    }
    return sendOwned(std::unique_ptr<Message, MessageDeleter>(asMessage(std::exchange(*message, nullptr))));
}

int32_t AaSysComMsgSendS(void** message, TAaSysComSicad sender)
{
    AaSysComMsgSetSender(message ? *message : nullptr, sender);
    return AaSysComMsgSend(message);
}

void* AaSysComMsgReceive(int32_t timeout)
{
    return receive(timeout, nullptr);
}

void* AaSysComMsgReceiveSelective(int32_t timeout, const uint16_t* filter)
{
    const std::span<const std::uint16_t> ids =
        filter ? std::span(filter + 1, filter[0]) : std::span<const std::uint16_t>();
    return receive(timeout, &ids);
}

void AaSysComMsgDestroy(void** message)
{
    if (message) {
        Message::destroy(asMessage(std::exchange(*message, nullptr)));
    }
}

void* AaSysComMsgGetPayload(void* message)
{
    return message && headerOf(message)->payloadSize > 0 ? asMessage(message)->payload() : nullptr;
}

uint16_t AaSysComMsgGetPayloadSize(const void* message)
{
    return message ? headerOf(message)->payloadSize : uint16_t{0};
}

TAaSysComMsgId AaSysComMsgGetId(const void* message)
{
    return message ? headerOf(message)->id : 0;
}

TAaSysComSicad AaSysComMsgGetSender(const void* message)
{
    return message ? headerOf(message)->sender : 0;
}

TAaSysComSicad AaSysComMsgGetReceiver(const void* message)
{
    return message ? headerOf(message)->receiver : 0;
}

void AaSysComMsgSetSender(void* message, TAaSysComSicad sender)
{
    if (message) {
        asMessage(message)->header.sender = sender;
    }
}
