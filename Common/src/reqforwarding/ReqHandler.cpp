// SPDX-License-Identifier: MIT
#include "reqforwarding/ReqHandler.hpp"

#include "AaSysCom.h"
#include "AaSysLog.h"
#include "InvalidParameterException.hpp"
#include "MsgHandlingException.hpp"
#include "reqforwarding/Req.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace vel::hwapi::common {
namespace {

class Walk;
constinit thread_local Walk* innermostWalk = nullptr;

/// A walk of this thread through a handler's requests. It learns when the request that it stands at has completed: the
/// number of requests does not tell when that request has had another one take its place. And it knows the place of
/// that request, which is the one that mostly completes.
class Walk {
public:
    using Place = std::list<Req*>::iterator;

    explicit Walk(const ReqHandler& handler) : m_handler(handler), m_outer(std::exchange(innermostWalk, this)) {}
    ~Walk() { innermostWalk = m_outer; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    void standAt(Place place)
    {
        m_place = place;
        m_req = *place;
    }
    bool hasLostItsReq() const { return !m_req; }
    Place place() const { return m_place; }

    /// The walk that stands at @p req; null when there is none.
    static const Walk* at(const ReqHandler& handler, const Req* req)
    {
        const Walk* walk = innermostWalk;
        while (walk && !walk->standsAt(handler, req)) {
            walk = walk->m_outer;
        }
        return walk;
    }
    static void noteCompleted(const ReqHandler& handler, const Req* req)
    {
        for (Walk* walk = innermostWalk; walk; walk = walk->m_outer) {
            if (walk->standsAt(handler, req)) {
                walk->m_req = nullptr;
            }
        }
    }

private:
    bool standsAt(const ReqHandler& handler, const Req* req) const
    {
        return req && m_req == req && &m_handler == &handler;
    }

    const ReqHandler& m_handler;
    Walk* const m_outer;
    Place m_place;
    const Req* m_req = nullptr;
};

int sizeOf(const std::list<Req*>& reqs)
{
    return static_cast<int>(reqs.size());
}

} // namespace

ReqHandler::ReqHandler(ERadHwapi printId) : m_printId(printId)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::ReqHandler");
}

ReqHandler::~ReqHandler()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::~ReqHandler");
    while (!m_reqs.empty()) {
        Req* const req = m_reqs.front();
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::~ReqHandler delete req '%p'",
                       static_cast<void*>(req));
        m_reqs.pop_front();
        delete req;
    }
}

void ReqHandler::HandleNewReq(void* msgHandle)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::HandleNewReq msgHandle '%p'", msgHandle);
    HandleNewReq(NewReq(msgHandle));
}

void ReqHandler::HandleNewReq(Req* req)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::HandleNewReq req '%p'",
                   static_cast<void*>(req));
    if (!req) {
        throw InvalidParameterException("NULL pointer argument passed to ReqHandler::HandleNewReq", __FILE__, __LINE__);
    }
    std::unique_ptr<Req> owned(req);
    m_reqs.push_back(req);
    owned.release(); // NOLINT(bugprone-unused-return-value): the list owns it
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::HandleNewReq m_reqs.size '%d' req '%p'",
                   sizeOf(m_reqs), static_cast<void*>(req));
    req->HandleReq();
}

void ReqHandler::ReqCompleted(Req* req)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::ReqCompleted reqPointer '%p'",
                   static_cast<void*>(req));
    const Walk* const walk = Walk::at(*this, req);
    const auto found = walk ? walk->place() : std::find(m_reqs.begin(), m_reqs.end(), req);
    if (found != m_reqs.end()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::ReqCompleted delete req '%p'",
                       static_cast<void*>(req));
        m_reqs.erase(found);
        Walk::noteCompleted(*this, req);
        delete req;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::ReqCompleted m_reqs.size '%d'",
                   sizeOf(m_reqs));
}

void ReqHandler::HandleForwardedReqResp(void* msgHandle)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId,
                   "ReqHandler::HandleForwardedReqResp msgHandle '%p' m_reqs.size '%d'", msgHandle, sizeOf(m_reqs));
    Walk walk(*this);
    for (auto place = m_reqs.begin(); place != m_reqs.end(); ++place) {
        const std::size_t size = m_reqs.size();
        Req* const req = *place;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::HandleForwardedReqResp req '%p'",
                       static_cast<void*>(req));
        walk.standAt(place);
        req->HandleForwardedReqResp(msgHandle);
        if (m_reqs.size() != size || walk.hasLostItsReq()) {
            break;
        }
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "ReqHandler::HandleForwardedReqResp m_reqs.size '%d'",
                   sizeOf(m_reqs));
}

void ReqHandler::HandleForwardedReqTimeout(void* msgHandle)
{
    const void* const payload = AaSysComMsgGetPayload(msgHandle);
    void* identity = nullptr;
    if (!payload || AaSysComMsgGetPayloadSize(msgHandle) < sizeof(SApiForwardTimeoutOut)) {
        throw MsgHandlingException("ReqHandler::HandleForwardedReqTimeout Payload missing from API_FORWARD_TIMEOUT_OUT",
                                   __FILE__, __LINE__);
    }
    std::memcpy(&identity, payload, sizeof identity);
    for (auto place = m_reqs.begin(); place != m_reqs.end(); ++place) {
        Req* const req = *place;
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId,
                       "ReqHandler::HandleForwardedReqTimeout req'%p' (*it)'%p'", identity, static_cast<void*>(req));
        if (req == identity) {
            Walk walk(*this);
            walk.standAt(place);
            req->HandleForwardedReqTimeout();
            return;
        }
    }
}

} // namespace vel::hwapi::common
