// SPDX-License-Identifier: MIT
// Messages and their delivery.
#include "AaSysCom.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Letter.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

namespace dorn::conformance {
namespace {

constexpr TAaSysComMsgId firstId = 0x5C00;
constexpr TAaSysComMsgId lastId = 0x5CFF;
constexpr unsigned orderedMessages = 500;

/// A text whose every byte depends on its place.
std::string pattern(std::size_t size)
{
    std::string text(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        text[index] = static_cast<char>(index * 7 + index / 251);
    }
    return text;
}

void createdMessageIsWhatWasAskedFor()
{
    for (const std::uint16_t size : std::initializer_list<std::uint16_t>{0, 1, 100, 65535}) {
        Letter letter(AaSysComMsgCreate(0xABCD1234, size, 0x0F020201));
        expect(static_cast<bool>(letter), "AaSysComMsgCreate() with " + std::to_string(size) + " bytes gave null");
        expectEqual(letter.id(), 0xABCD1234U, "AaSysComMsgGetId()");
        expectEqual(AaSysComMsgGetReceiver(letter.handle()), 0x0F020201U, "AaSysComMsgGetReceiver()");
        expectEqual(AaSysComMsgGetPayloadSize(letter.handle()), size, "AaSysComMsgGetPayloadSize()");
        void* const payload = AaSysComMsgGetPayload(letter.handle());
        expect((payload != nullptr) == (size != 0), "AaSysComMsgGetPayload() gave null for a message with payload, or "
                                                    "something for one without");
        expect(std::bit_cast<std::uintptr_t>(payload) % alignof(std::max_align_t) == 0,
               "a payload is not aligned for every type");
        if (payload) {
            std::memset(payload, 0x5A, size);
        }
    }
}

void senderIsTheFirstCpid()
{
    expectEqual(AaSysComMsgGetSender(write(firstId, 1).handle()), 0U, "the sender of a message of an EU without cpid");
    const Address first;
    const Address second;
    expectEqual(AaSysComMsgGetSender(write(firstId, 1).handle()), first.sicad(),
                "the sender of a message of an EU with two cpids");
}

void senderCanBeSet()
{
    Letter letter = write(firstId, 1);
    AaSysComMsgSetSender(letter.handle(), 0x0F020305);
    expectEqual(AaSysComMsgGetSender(letter.handle()), 0x0F020305U, "AaSysComMsgGetSender()");
    AaSysComMsgSetSender(nullptr, 1);
}

void nullHandleIsPassedOver()
{
    expect(AaSysComMsgGetPayload(nullptr) == nullptr, "AaSysComMsgGetPayload(null) did not give null");
    expectEqual(AaSysComMsgGetPayloadSize(nullptr), 0, "AaSysComMsgGetPayloadSize(null)");
    expectEqual(AaSysComMsgGetId(nullptr), 0U, "AaSysComMsgGetId(null)");
    expectEqual(AaSysComMsgGetSender(nullptr), 0U, "AaSysComMsgGetSender(null)");
    expectEqual(AaSysComMsgGetReceiver(nullptr), 0U, "AaSysComMsgGetReceiver(null)");
    void* none = nullptr;
    AaSysComMsgDestroy(&none);
    AaSysComMsgDestroy(nullptr);
}

void destroySetsTheHandleToNull()
{
    void* message = AaSysComMsgCreate(firstId, 10, 1);
    expect(message != nullptr, "AaSysComMsgCreate() gave null");
    AaSysComMsgDestroy(&message);
    expect(message == nullptr, "AaSysComMsgDestroy() left the handle as it was");
}

void messageArrivesWhole()
{
    const Address own;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{1000}, std::size_t{65535}}) {
        const std::string text = pattern(size);
        post(firstId, own.sicad(), text);
        Letter letter = take();
        expectEqual(letter.id(), firstId, "the id of a message that has arrived");
        expectEqual(AaSysComMsgGetPayloadSize(letter.handle()), size, "its payload's size");
        expect(letter.text() == text, "its payload of " + std::to_string(size) + " bytes is not what was sent");
        expectEqual(AaSysComMsgGetSender(letter.handle()), own.sicad(), "its sender");
        expectEqual(AaSysComMsgGetReceiver(letter.handle()), own.sicad(), "its receiver");
    }
}

void sendTakesTheMessage()
{
    const Address own;
    Letter letter = write(firstId, own.sicad());
    expectEqual(AaSysComMsgSend(&letter.handle()), 0, "AaSysComMsgSend()");
    expect(!letter, "AaSysComMsgSend() left the handle as it was");
    expectLetter(firstId, "");
}

void sendWithSender()
{
    const Address own;
    const Address second;
    Letter letter = write(firstId, own.sicad(), "text");
    expectEqual(AaSysComMsgSendS(&letter.handle(), second.sicad()), 0, "AaSysComMsgSendS()");
    expect(!letter, "AaSysComMsgSendS() left the handle as it was");
    Letter received = take();
    expectEqual(AaSysComMsgGetSender(received.handle()), second.sicad(), "the sender given to AaSysComMsgSendS()");
    expect(received.text() == "text", "the payload is not what was sent");
}

void sendToNobodyFails()
{
    TAaSysComSicad nobody = 0;
    {
        const Address freed;
        nobody = freed.sicad();
    }
    Letter letter = write(firstId, nobody, "lost");
    expectEqual(AaSysComMsgSend(&letter.handle()), EAaSysComStatus_NoReceiver,
                "AaSysComMsgSend() to a cpid that nobody holds");
    expect(!letter, "a send that failed left the handle as it was");
    Letter other = write(firstId, nobody, "lost");
    expectEqual(AaSysComMsgSendS(&other.handle(), 0), EAaSysComStatus_NoReceiver,
                "AaSysComMsgSendS() to a cpid that nobody holds");
    expect(!other, "a send that failed left the handle as it was");
}

void sendToUnknownNodeFails()
{
    const TAaSysComNid other = AaSysComGetOwnNid() ^ 0x7FFFU;
    Letter letter = write(firstId, AaSysComSicadGet(0x0200, other), "lost");
    expectEqual(AaSysComMsgSend(&letter.handle()), EAaSysComStatus_NoRoute,
                "AaSysComMsgSend() to the node " + std::to_string(other) + ", which cannot be reached,");
    expect(!letter, "a send that failed left the handle as it was");
}

void sendOfNothingFails()
{
    void* none = nullptr;
    expectEqual(AaSysComMsgSend(&none), EAaSysComStatus_NoMessage, "AaSysComMsgSend() of a null message");
    expectEqual(AaSysComMsgSend(nullptr), EAaSysComStatus_NoMessage, "AaSysComMsgSend(null)");
    expectEqual(AaSysComMsgSendS(&none, 1), EAaSysComStatus_NoMessage, "AaSysComMsgSendS() of a null message");
}

void sendInOrder(TAaSysComSicad receiver)
{
    for (unsigned number = 0; number < orderedMessages; ++number) {
        post(firstId + number % 3, receiver, std::to_string(number));
    }
}

void expectInOrder()
{
    for (unsigned number = 0; number < orderedMessages; ++number) {
        const Letter letter = take();
        expect(letter.text() == std::to_string(number),
               "message " + std::to_string(number) + " was to come, and " + letter.text() + " came");
        expectEqual(letter.id(), firstId + number % 3, "its id");
    }
    expectNoLetter("and all that were sent had come");
}

void messagesArriveInOrder()
{
    const Address own;
    Eu sender([receiver = own.sicad()] { sendInOrder(receiver); });
    expectInOrder();
    sender.join();
}

void messagesOfAnotherProcessArriveInOrder()
{
    const Address own;
    OtherProcess other("sends-in-order", {std::to_string(own.sicad())});
    expectInOrder();
    expectEqual(other.waitForEnd(), 0, "the end of the sending process");
}

void sendInOrderTo(std::span<char* const> arguments)
{
    sendInOrder(static_cast<TAaSysComSicad>(std::strtoul(arguments[0], nullptr, 0)));
}

void messagesPassBetweenProcesses()
{
    const Address own;
    OtherProcess other("echoes");
    const auto there = static_cast<TAaSysComSicad>(std::strtoul(other.hear().c_str(), nullptr, 0));
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{4096}, std::size_t{65535}}) {
        post(firstId, there, pattern(size));
        Letter letter = take();
        expectEqual(letter.id(), firstId + 1, "the id of the answer from another process");
        expect(letter.text() == pattern(size),
               "a payload of " + std::to_string(size) + " bytes came back from another process as something else");
        expectEqual(AaSysComMsgGetSender(letter.handle()), there, "the answer's sender");
        expectEqual(AaSysComMsgGetReceiver(letter.handle()), own.sicad(), "the answer's receiver");
    }
    post(lastId, there);
    expectEqual(other.waitForEnd(), 0, "the end of the other process");
}

void echo(std::span<char* const>)
{
    const Address own;
    say(std::to_string(own.sicad()));
    for (;;) {
        Letter letter = take();
        if (letter.id() == lastId) {
            return;
        }
        post(letter.id() + 1, AaSysComMsgGetSender(letter.handle()), letter.text());
    }
}

void fullQueueIsNoSilentLoss()
{
    constexpr unsigned greatest = 300'000;
    const Address own;
    unsigned accepted = 0;
    int32_t status = 0;
    while (accepted < greatest) {
        Letter letter = write(firstId, own.sicad());
        status = AaSysComMsgSend(&letter.handle());
        expect(!letter, "AaSysComMsgSend() left the handle as it was");
        if (status != 0) {
            break;
        }
        ++accepted;
    }
    expect(status == 0 || status == EAaSysComStatus_QueueFull || status == EAaSysComStatus_NoResources,
           "an EU that fills its own queue was told " + shown(status));
    for (unsigned number = 0; number < accepted; ++number) {
        expect(static_cast<bool>(Letter(AaSysComMsgReceive(AA_NO_WAIT))),
               "of " + std::to_string(accepted) + " messages that were accepted, " + std::to_string(number) + " came");
    }
    expectNoLetter("and all that were accepted had come");
}

constexpr std::array rules{
    Rule{
        "message.is-what-was-asked-for", "AaSysCom.h",
        "AaSysComMsgCreate AaSysComMsgGetId AaSysComMsgGetReceiver AaSysComMsgGetPayload AaSysComMsgGetPayloadSize",
        "A new message has the id, receiver and payload size that were asked for; the payload is aligned for any type, "
        "and null when there is none",
        createdMessageIsWhatWasAskedFor},
    Rule{"message.sender-is-the-first-cpid", "AaSysCom.h", "AaSysComMsgCreate AaSysComMsgGetSender",
         "A new message's sender is the first cpid of the calling EU, or 0 when it has none", senderIsTheFirstCpid},
    Rule{"message.sender-can-be-set", "AaSysCom.h", "AaSysComMsgSetSender AaSysComMsgGetSender",
         "AaSysComMsgSetSender() sets the sender, and passes null over", senderCanBeSet},
    Rule{"message.null-handle-is-passed-over", "AaSysCom.h",
         "AaSysComMsgGetPayload AaSysComMsgGetPayloadSize AaSysComMsgGetId AaSysComMsgGetSender AaSysComMsgGetReceiver "
         "AaSysComMsgDestroy",
         "For a null handle there is null or 0, and nothing to destroy", nullHandleIsPassedOver},
    Rule{"message.destroy-sets-the-handle-to-null", "AaSysCom.h", "AaSysComMsgDestroy",
         "AaSysComMsgDestroy() sets the handle to null", destroySetsTheHandleToNull},
    Rule{"message.arrives-whole", "AaSysCom.h",
         "AaSysComMsgSend AaSysComMsgReceive AaSysComMsgGetPayload AaSysComMsgGetSender AaSysComMsgGetReceiver",
         "A message arrives with its id, sender, receiver and every byte of its payload, of up to 65,535 bytes",
         messageArrivesWhole},
    Rule{"message.send-takes-the-message", "AaSysCom.h", "AaSysComMsgSend",
         "AaSysComMsgSend() takes the message and sets the handle to null", sendTakesTheMessage},
    Rule{"message.send-with-sender", "AaSysCom.h", "AaSysComMsgSendS", "AaSysComMsgSendS() sends with the given sender",
         sendWithSender},
    Rule{"message.send-to-nobody-fails", "AaSysCom.h", "AaSysComMsgSend AaSysComMsgSendS",
         "A send to a cpid that nobody holds returns EAaSysComStatus_NoReceiver at once, and takes the message all the "
         "same",
         sendToNobodyFails},
    Rule{"message.send-to-unknown-node-fails", "AaSysCom.h", "AaSysComMsgSend",
         "A send to a node that cannot be reached returns EAaSysComStatus_NoRoute, and takes the message all the same",
         sendToUnknownNodeFails},
    Rule{"message.send-of-nothing-fails", "AaSysCom.h", "AaSysComMsgSend AaSysComMsgSendS",
         "A send of null returns EAaSysComStatus_NoMessage", sendOfNothingFails},
    Rule{"message.order-within-a-process", "AaSysCom.h", "AaSysComMsgSend AaSysComMsgReceive",
         "Messages of one EU to another arrive in the order in which they were sent, all and once",
         messagesArriveInOrder},
    Rule{"message.order-between-processes", "AaSysCom.h", "AaSysComMsgSend AaSysComMsgReceive",
         "Messages of another process arrive in the order in which they were sent, all and once",
         messagesOfAnotherProcessArriveInOrder},
    Rule{"message.between-processes", "AaSysCom.h",
         "AaSysComMsgSend AaSysComMsgReceive AaSysComMsgGetSender AaSysComMsgGetPayload",
         "Messages pass between the processes of a node whole, with sender and receiver, of up to 65,535 bytes",
         messagesPassBetweenProcesses},
    Rule{"message.full-queue-is-no-silent-loss", "AaSysCom.h", "AaSysComMsgSend AaSysComMsgReceive",
         "An EU that fills its own queue is told so at once, and every message that was accepted arrives",
         fullQueueIsNoSilentLoss},
};

constexpr std::array roles{
    Role{"sends-in-order", sendInOrderTo},
    Role{"echoes", echo},
};

} // namespace

Rules messageRules()
{
    return rules;
}

Roles messageRoles()
{
    return roles;
}

} // namespace dorn::conformance
