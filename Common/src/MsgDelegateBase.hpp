// SPDX-License-Identifier: MIT
/// @file MsgDelegateBase.hpp
/// What handles the messages of one id. A service registers it with its Service, which then owns it.
#pragma once

namespace vel::hwapi::common {

/// What handles the messages of one id.
class MsgDelegateBase {
public:
    /// @param msgId the id of the messages that HandleMsg() is called for
    explicit MsgDelegateBase(unsigned int msgId) : m_msgId(msgId) {}
    MsgDelegateBase(const MsgDelegateBase&) = delete;
    MsgDelegateBase& operator=(const MsgDelegateBase&) = delete;
    /// May throw in a derived class: Service::RemoveMsgDelegate() reports it, the Service's own end terminates.
    virtual ~MsgDelegateBase() noexcept(false) = default;

    /// Handles one received message, on the service's main EU.
    ///
    /// The message stays the message loop's: it must be neither sent nor destroyed here, and what is needed longer than
    /// the call is to be copied. An exception ends the service.
    virtual void HandleMsg(void* message) = 0;

    /// The id of the messages that it handles.
    unsigned int GetMsgId() const { return m_msgId; }

private:
    const unsigned int m_msgId;
};

} // namespace vel::hwapi::common
