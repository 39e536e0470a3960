// SPDX-License-Identifier: MIT
/// @file ReqDelegate.hpp
/// Gives the messages of one type to an entry point of a ReqHandler:
///
///     AddMsgDelegate(new ReqDelegate<LockReqMsg>(m_locks, &ReqHandler::HandleNewReq, GetRadId()));
///
/// The requests can rely on the record, as the handlers of MsgDelegate.hpp can: a message whose payload is shorter is
/// logged at error severity and dropped.
#pragma once

#include "AaSysLog.h"
#include "MsgDelegateBase.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <type_traits>
#include <utility>

namespace vel::hwapi::common {

/// @tparam TypedMessage a `Msg<Record, id>`
template <class TypedMessage>
class ReqDelegate : public MsgDelegateBase {
public:
    /// The handler's member function that takes the messages.
    using EntryPoint = void (ReqHandler::*)(void* msgHandle);

    /// @param handler lives as long as the delegate is registered
    /// @param printId feature id of the line about a short message
    ReqDelegate(ReqHandler& handler, EntryPoint entryPoint, unsigned int printId)
        : MsgDelegateBase(TypedMessage::ID), m_handler(handler), m_entryPoint(entryPoint), m_printId(printId)
    {
    }

    void HandleMsg(void* message) override
    {
        if (!std::is_empty_v<Record> && AaSysComMsgGetPayloadSize(message) < sizeof(Record)) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId,
                           "Message too short: id=0x%04X size=%u expected=%zu sender=0x%08X", TypedMessage::ID,
                           static_cast<unsigned int>(AaSysComMsgGetPayloadSize(message)), sizeof(Record),
                           AaSysComMsgGetSender(message));
            return;
        }
        (m_handler.*m_entryPoint)(message);
    }

private:
    using Record = std::remove_pointer_t<decltype(std::declval<TypedMessage&>().GetPayload())>;

    ReqHandler& m_handler;
    const EntryPoint m_entryPoint;
    const unsigned int m_printId;
};

} // namespace vel::hwapi::common
