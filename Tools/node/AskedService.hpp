// SPDX-License-Identifier: MIT
/// @file AskedService.hpp
/// Asking a service of the node something in its own messages.
#pragma once

#include "Outcome.hpp"
#include "node/NodeMessages.hpp"
#include "node/NodePlace.hpp"
#include "waiting/TimeLimit.hpp"

#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace dorn::tool {

/// A service that answers operators.
struct AskedService {
    TAaSysComCpid cpid;
    const char* name;       ///< "the fault manager"
    const char* executable; ///< "DornFaultManagerExe"
};

/// The record type of a typed message, `Msg<Record, id>`.
template <class TypedMessage>
using RecordOf = std::remove_pointer_t<decltype(std::declval<TypedMessage&>().GetPayload())>;

/// An answer whose payload is known to hold its record.
template <class Record>
class Answer {
public:
    explicit Answer(MessageHandle message) : m_message(std::move(message))
    {
        std::memcpy(&m_record, payloadOf(m_message.get()).data(), sizeof m_record);
    }
    const Record* operator->() const { return &m_record; }
    const Record& operator*() const { return m_record; }

    /// The records that follow; @p count were announced. @throws Failure when they are not there.
    template <class Item>
    std::vector<Item> items(std::size_t count) const
    {
        const BytesView tail = payloadOf(m_message.get()).subspan(sizeof m_record);
        if (count > tail.size() / sizeof(Item)) {
            throw Failure("the answer is cut off: " + std::to_string(tail.size() / sizeof(Item)) + " of " +
                          std::to_string(count) + " records are there");
        }
        std::vector<Item> items(count);
        if (count != 0) {
            std::memcpy(items.data(), tail.data(), count * sizeof(Item));
        }
        return items;
    }

private:
    MessageHandle m_message;
    Record m_record{};
};

/// Sends bytes to a service. @return an EAaSysComStatus.
std::int32_t sendToService(const AskedService& service, TAaSysComMsgId id, BytesView payload);

/// The same. @throws Failure when it could not be delivered.
void sendOrExplain(const AskedService& service, TAaSysComMsgId id, BytesView payload);

/// Sends a request of at least 4 bytes, the first of which are its transaction id, and waits for the answer with the
/// same transaction id. Other messages are dropped.
/// @param leastSize bytes that the answer has at least
/// @throws Failure when the service is not there or does not answer in time.
MessageHandle askService(const AskedService& service, TAaSysComMsgId id, BytesView request, TAaSysComMsgId answerId,
                         std::size_t leastSize);

/// Asks with typed messages. The record's first field is the transaction id.
template <class Request, class Response>
Answer<RecordOf<Response>> ask(const AskedService& service, const RecordOf<Request>& request)
{
    return Answer<RecordOf<Response>>(askService(service, Request::ID, std::as_bytes(std::span(&request, 1)),
                                                 Response::ID, sizeof(RecordOf<Response>)));
}

/// The one question of a command: looks whether there are messages on the node at all, asks from a communication point
/// of its own, and gives up when that takes longer than a command may.
template <class Request, class Response>
Answer<RecordOf<Response>> askOnce(const AskedService& service, const RecordOf<Request>& request)
{
    NodePlace().require(NodePart::Messages);
    return answerOf(service.name, [&] {
        const CommunicationPoint point;
        return ask<Request, Response>(service, request);
    });
}

/// A number for a request of this process. May be called from any thread.
std::uint32_t newTransactionId();

} // namespace dorn::tool
