// SPDX-License-Identifier: MIT
#include "node/AskedService.hpp"

#include <atomic>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::chrono::milliseconds patience{1500}; // within answerLimit

std::uint32_t transactionOf(BytesView payload)
{
    std::uint32_t id = 0;
    std::memcpy(&id, payload.data(), sizeof id);
    return id;
}

bool isAnswer(void* message, TAaSysComMsgId id, std::size_t leastSize, std::uint32_t transactionId)
{
    return AaSysComMsgGetId(message) == id && AaSysComMsgGetPayloadSize(message) >= leastSize &&
           transactionOf(payloadOf(message)) == transactionId;
}

std::string onNode(const std::string& text)
{
    return text + " on " + NodePlace().nodeName();
}

[[noreturn]] void explain(const AskedService& service, std::int32_t status)
{
    const std::string name = service.name;
    switch (status) {
    case EAaSysComStatus_NoReceiver:
        throw Failure(onNode(name + " does not run") + "; start " + service.executable);
    case EAaSysComStatus_QueueFull:
        throw Failure(onNode(name) + " does not take its messages: its queue stays full");
    default:
        throw Failure(onNode(name) + " cannot be asked: memory or descriptors have run out");
    }
}

} // namespace

std::uint32_t newTransactionId()
{
    static std::atomic<std::uint32_t> last{static_cast<std::uint32_t>(getpid()) << 8U};
    return ++last;
}

std::int32_t sendToService(const AskedService& service, TAaSysComMsgId id, BytesView payload)
{
    void* message =
        AaSysComMsgCreate(id, static_cast<std::uint16_t>(payload.size()), AaSysComSicadGet(service.cpid, ownNode()));
    if (!message) {
        return EAaSysComStatus_NoResources;
    }
    std::memcpy(AaSysComMsgGetPayload(message), payload.data(), payload.size());
    return AaSysComMsgSend(&message);
}

void sendOrExplain(const AskedService& service, TAaSysComMsgId id, BytesView payload)
{
    if (const std::int32_t status = sendToService(service, id, payload); status != EAaSysComStatus_Ok) {
        explain(service, status);
    }
}

MessageHandle askService(const AskedService& service, TAaSysComMsgId id, BytesView request, TAaSysComMsgId answerId,
                         std::size_t leastSize)
{
    const host::Deadline until = host::Clock::get().monotonic() + patience;
    sendOrExplain(service, id, request);
    const std::uint32_t transactionId = transactionOf(request);
    while (MessageHandle message = receive(until)) {
        if (isAnswer(message.get(), answerId, leastSize, transactionId)) {
            return message;
        }
    }
    throw Failure(onNode(service.name) + " does not answer");
}

} // namespace dorn::tool
