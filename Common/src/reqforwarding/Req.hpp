// SPDX-License-Identifier: MIT
/// @file Req.hpp
/// A request that a service cannot answer by itself: it forwards it and answers when the forwarded reply has come.
///
/// 1. A handler (ReqHandler.hpp) makes the object for a request message and calls HandleReq(), which forwards the
///    request and, as a rule, arms a time-out: `AaTimerArm(timeout, static_cast<Req*>(this))`.
/// 2. The handler calls HandleForwardedReqResp() for replies until one is recognised, or HandleForwardedReqTimeout()
///    when the time has passed.
/// 3. The request answers and calls `m_owner.ReqCompleted(this)`, which deletes it.
///
/// All of that happens on the service's main EU. Derive from it and override what the request uses.
#pragma once

#include "rad/ERadHwapi.h"

namespace vel::hwapi::common {

class ReqHandler;

/// One request from its arrival to its answer; derived from by services.
class Req {
public:
    /// @param owner the handler that keeps the request; lives longer than it
    /// @param printId feature id of the request's log lines
    /// @param msgHandle the request message
    Req(ReqHandler& owner, ERadHwapi printId, void* msgHandle);
    Req(const Req&) = delete;
    Req& operator=(const Req&) = delete;
    virtual ~Req();

    /// Forwards the request. Called once, when the handler keeps it already; it may complete at once.
    /// @throws MsgHandlingException unless overridden.
    virtual void HandleReq();

    /// Looks whether a forwarded reply is the answer to this request. If it is, answers and calls
    /// ReqHandler::ReqCompleted(); if it is not, does nothing, and the next younger request is asked.
    /// @param msgHandle the reply; it remains the message loop's, and what is needed longer than the call is to be
    ///   copied.
    /// @throws MsgHandlingException unless overridden.
    virtual void HandleForwardedReqResp(void* msgHandle);

    /// The time for the reply has passed: gives up, answers and calls ReqHandler::ReqCompleted(), or forwards again.
    /// @throws MsgHandlingException unless overridden.
    virtual void HandleForwardedReqTimeout();

protected:
    /// The handler that keeps the request.
    ReqHandler& m_owner;
    /// Feature id of the request's log lines.
    ERadHwapi m_printId;
    /// The request message; the message loop destroys it after HandleReq(). What is needed later is to be copied there.
    void* m_msgHandle;
};

} // namespace vel::hwapi::common
