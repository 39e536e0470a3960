// SPDX-License-Identifier: MIT
/// @file MsgDelegate.hpp
/// Binds a member function to a message id.
///
/// A service gives its handlers the message as they want to read it, and registers each with one line:
///
///     using PingMsg = Msg<SPing, 0x1234>;
///
///     void PingS::Init() { AddMsgHandler(&PingS::HandlePing); }
///     void PingS::HandlePing(PingMsg ping) { ... ping->counter ... }
///
/// A handler can rely on its record: a message whose payload is shorter than the record, or missing, is not given to
/// it; it is logged at error severity and the service goes on. A message that has nothing to say is declared with an
/// empty record (`struct SNothing {};`); its handler is called whatever the payload is.
#pragma once

#include "AaSysLog.h"
#include "Msg.hpp"
#include "MsgDelegateBase.hpp"

#include <type_traits>

namespace vel::hwapi::common {

/// @tparam Target class whose member function is the handler
template <class Target, class Tpayload, unsigned int mid>
class MsgDelegate : public MsgDelegateBase {
public:
    /// A member function that takes the messages of this id.
    using Handler = void (Target::*)(Msg<Tpayload, mid>);

    /// @param target the object on which the handler is called; must live as long as the delegate
    /// @param handler the member function
    /// @param printId feature id of the line about a short message
    MsgDelegate(Target& target, Handler handler, unsigned int printId)
        : MsgDelegateBase(mid), m_target(target), m_handler(handler), m_printId(printId)
    {
    }

    void HandleMsg(void* message) override
    {
        if (!std::is_empty_v<Tpayload> && AaSysComMsgGetPayloadSize(message) < sizeof(Tpayload)) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_printId,
                           "Message too short: id=0x%04X size=%u expected=%zu sender=0x%08X", mid,
                           static_cast<unsigned int>(AaSysComMsgGetPayloadSize(message)), sizeof(Tpayload),
                           AaSysComMsgGetSender(message));
            return;
        }
        // The handler may remove this delegate: nothing of it is touched afterwards.
        (m_target.*m_handler)(Msg<Tpayload, mid>(message));
    }

private:
    Target& m_target;
    const Handler m_handler;
    const unsigned int m_printId;
};

} // namespace vel::hwapi::common
