// SPDX-License-Identifier: MIT
#include "ForwardingS.hpp"

#include "reqforwarding/ReqDelegate.hpp"

namespace dorn::test {
namespace {

using namespace vel::hwapi::common;

class ForwardedReq : public Req {
public:
    ForwardedReq(ReqHandler& owner, void* msgHandle)
        : Req(owner, ERadHwapi_PrintBoundaryIf, msgHandle),
          m_requester(AskMsg(msgHandle).GetSender()),
          m_ask(*AskMsg(msgHandle).GetPayload())
    {
    }
    ~ForwardedReq() override
    {
        if (m_ask.leavesItsTimer == 0) {
            AaTimerCancel(m_timer);
        }
    }
    ForwardedReq(const ForwardedReq&) = delete;
    ForwardedReq& operator=(const ForwardedReq&) = delete;

    void HandleReq() override
    {
        m_timer = AaTimerArm(m_ask.timeout, static_cast<Req*>(this));
        ForwardedReqMsg forwarded(AaSysComSicadGet(serverCpid, AaSysComGetOwnNid()), 0);
        forwarded->number = m_ask.number;
        forwarded.SetSender(Service::Get()->GetSicad());
        forwarded.Send();
    }
    void HandleForwardedReqResp(void* msgHandle) override
    {
        if (ForwardedRespMsg(msgHandle)->number == m_ask.number) {
            complete(EResult_Answered);
        }
    }
    void HandleForwardedReqTimeout() override { complete(EResult_TimedOut); }

private:
    void complete(EResult result)
    {
        AnswerMsg answer(m_requester, 0);
        answer->number = m_ask.number;
        answer->result = result;
        answer.SetSender(Service::Get()->GetSicad());
        answer.Send();
        m_owner.ReqCompleted(this);
    }

    const unsigned int m_requester;
    const SAsk m_ask;
    TAaTimerId m_timer = 0;
};

} // namespace

Req* ForwardedReqs::NewReq(void* msgHandle)
{
    return new ForwardedReq(*this, msgHandle); // NOLINT: the handler owns it
}

ForwardingS::ForwardingS() : Service("Forwarding", 0x456, ERadHwapi_PrintBoundaryIf, ERadHwapiState_ClimateState) {}

void ForwardingS::Init()
{
    AddMsgDelegate(new ReqDelegate<AskMsg>(m_reqs, &ReqHandler::HandleNewReq, GetRadId()));
    AddMsgDelegate(new ReqDelegate<ForwardedRespMsg>(m_reqs, &ReqHandler::HandleForwardedReqResp, GetRadId()));
    AddMsgDelegate(
        new ReqDelegate<ApiForwardTimeoutOutMsg>(m_reqs, &ReqHandler::HandleForwardedReqTimeout, GetRadId()));
}

} // namespace dorn::test
