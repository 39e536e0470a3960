// SPDX-License-Identifier: MIT
/// @file ReqHandler.hpp
/// The open requests of one kind.
///
/// 1. Derive from ReqHandler and implement NewReq(), which makes the Req (Req.hpp) for a request message.
/// 2. Have the service's delegates call the three entry points, e.g. with a ReqDelegate (ReqDelegate.hpp):
///    HandleNewReq() for requests, HandleForwardedReqResp() for the replies to what was forwarded, and
///    HandleForwardedReqTimeout() for ApiForwardTimeoutOutMsg. A service with several handlers gives replies and
///    time-outs of the same id to each of them, in a delegate of its own.
/// 3. A request that is done calls ReqCompleted(), which deletes it.
///
/// All entry points are for the service's main EU. What a request throws leaves the entry point; in a delegate it ends
/// the service. The handler must not be deleted by one of its requests.
#pragma once

#include "AaTimer.h"
#include "Msg.hpp"
#include "rad/ERadHwapi.h"

#include <list>

namespace vel::hwapi::common {

class Req;

/// Id of the message that says that the time for a forwarded request has passed.
constexpr unsigned int API_FORWARD_TIMEOUT_OUT = AA_TIMER_MSG_TIMEOUT;

/// What the payload of that message begins with.
struct SApiForwardTimeoutOut {
    const void* req; ///< the request's address, as it was given to AaTimerArm(); not to be followed
};
/// Says that the time for a reply has passed.
using ApiForwardTimeoutOutMsg = Msg<SApiForwardTimeoutOut, API_FORWARD_TIMEOUT_OUT>;

/// Keeps the requests of a service that are under way, and brings replies and time-outs to them.
class ReqHandler {
public:
    /// @param printId feature id of the handler's log lines
    explicit ReqHandler(ERadHwapi printId);
    ReqHandler(const ReqHandler&) = delete;
    ReqHandler& operator=(const ReqHandler&) = delete;
    /// Deletes all open requests, the oldest first.
    virtual ~ReqHandler();

    /// Makes the object for a new request message; the handler deletes it.
    virtual Req* NewReq(void* msgHandle) = 0;

    /// Makes a request with NewReq() and keeps it, see the other HandleNewReq().
    /// @throws InvalidParameterException when NewReq() returned null.
    void HandleNewReq(void* msgHandle);

    /// Keeps a request as the youngest one and calls its HandleReq(). When that throws, the request stays open.
    /// @param req owned by the handler from now on; not one that it keeps already
    /// @throws InvalidParameterException when @p req is null.
    void HandleNewReq(Req* req);

    /// Deletes a request; does nothing for one that this handler does not keep. Called by the request, which must not
    /// touch itself afterwards.
    void ReqCompleted(Req* req);

    /// Offers a forwarded reply to the requests, the oldest first, until one completes or the number of open requests
    /// changes otherwise. A reply that is nobody's is dropped.
    void HandleForwardedReqResp(void* msgHandle);

    /// Tells a request that its time has passed. Requests are compared by address only: when the message is late and
    /// the request is no longer open, nothing happens, unless a new request has got the same address, which then is
    /// told.
    /// @throws MsgHandlingException when the message has no payload, or less of it than an address.
    void HandleForwardedReqTimeout(void* msgHandle);

protected:
    /// The oldest first. For a subclass to look at: requests come in through HandleNewReq() and go with ReqCompleted().
    /// A subclass must not take one out itself, as the handler may be standing at it.
    std::list<Req*> m_reqs;
    /// Feature id of the handler's log lines.
    ERadHwapi m_printId;
};

} // namespace vel::hwapi::common
