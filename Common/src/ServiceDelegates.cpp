// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaSysLog.h"
#include "InvalidParameterException.hpp"

#include <exception>

namespace vel::hwapi::common {

void Service::AddMsgDelegate(MsgDelegateBase* delegate)
{
    if (!delegate) {
        throw InvalidParameterException("NULL pointer argument passed to Service::AddMsgDelegate ", __FILE__, __LINE__);
    }
    try {
        m_delegates.insert({delegate->GetMsgId(), delegate});
    } catch (...) {
        std::terminate(); // a service that silently lacks a handler would be worse than none
    }
}

void Service::RemoveMsgDelegate(unsigned int msgId)
{
    // Out of the table first: the delegate's destructor may use the table, even register a successor.
    const auto removed = m_delegates.extract(msgId);
    if (removed.empty()) {
        return;
    }
    try {
        delete removed.mapped();
    } catch (const std::exception&) {
        throw RuntimeException("RemoveMsgDelegate failed", __FILE__, __LINE__);
    }
}

bool Service::HasMsgDelegate(unsigned int msgId) const
{
    return m_delegates.contains(msgId);
}

bool Service::addOrDrop(std::unique_ptr<MsgDelegateBase> delegate)
{
    if (HasMsgDelegate(delegate->GetMsgId())) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Message handler already registered: id=0x%04X",
                       delegate->GetMsgId());
        return false;
    }
    AddMsgDelegate(delegate.release());
    return true;
}

} // namespace vel::hwapi::common
