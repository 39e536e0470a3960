// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaSysLog.h"
#include "InvalidParameterException.hpp"

#include <exception>
#include <utility>

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
    const auto found = m_delegates.find(msgId);
    if (found == m_delegates.end()) {
        return;
    }
    // By id: the delegate's destructor may have changed the table.
    try {
        delete std::exchange(found->second, nullptr);
        m_delegates.erase(msgId);
    } catch (const std::exception&) {
        m_delegates.erase(msgId);
        throw RuntimeException("RemoveMsgDelegate failed", __FILE__, __LINE__);
    } catch (...) {
        m_delegates.erase(msgId);
        throw;
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
