// SPDX-License-Identifier: MIT
#include "syscom/Post.hpp"

#include "eu/Eu.hpp"
#include "syscom/ActiveTransport.hpp"
#include "syscom/CpidRegistry.hpp"
#include "syscom/Node.hpp"

#include <exception>

namespace dorn::host {

EAaSysComStatus postToEu(std::unique_ptr<Message, MessageDeleter>& message, TAaProEuId euId, Nanoseconds patience)
{
    Eu* const eu = eus::find(euId);
    if (!eu) {
        return EAaSysComStatus_NoReceiver;
    }
    // An EU that waited for room in its own queue would wait for itself.
    const bool mayWait = patience > Nanoseconds(0) && eu != eus::currentIfAny();
    message->targetEu = euId;
    switch (eu->queue.push(message.get(), mayWait ? patience : Nanoseconds(0))) {
    case MessageQueue::PushResult::Ok:
        message.release(); // NOLINT(bugprone-unused-return-value): the queue owns it
        return EAaSysComStatus_Ok;
    case MessageQueue::PushResult::Full:
        return EAaSysComStatus_QueueFull;
    case MessageQueue::PushResult::Closed:
        break;
    }
    return EAaSysComStatus_NoReceiver;
}

namespace {

/// Brings a message to whoever outside this process it is for.
EAaSysComStatus sendOut(const Message& message, Nanoseconds patience)
{
    const TAaSysComSicad receiver = message.header.receiver;
    if (isOwnNode(nodeOf(receiver))) {
        return activeTransport().send(cpidOf(receiver), message.frame(), patience);
    }
    return activeTransport().sendToNode(nodeOf(receiver), message.frame(), patience);
}

} // namespace

EAaSysComStatus post(std::unique_ptr<Message, MessageDeleter>& message, Nanoseconds patience)
{
    const TAaSysComSicad receiver = message->header.receiver;
    if (const TAaProEuId eu = localHolder(cpidOf(receiver)); eu != 0 && isOwnNode(nodeOf(receiver))) {
        return postToEu(message, eu, patience);
    }
    try {
        const EAaSysComStatus status = sendOut(*message, patience);
        if (status == EAaSysComStatus_Ok) {
            message.reset();
        }
        return status;
    } catch (const std::exception&) {
        return EAaSysComStatus_NoResources; // the node's directory cannot be opened; said when the EE was started
    }
}

} // namespace dorn::host
