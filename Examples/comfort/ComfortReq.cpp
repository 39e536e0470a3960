// SPDX-License-Identifier: MIT
#include "ComfortReq.hpp"

#include "ClimateMessages.hpp"
#include "ComfortMessages.hpp"
#include "Service.hpp"

namespace dorn::examples {

using vel::hwapi::common::Req;
using vel::hwapi::common::Service;

namespace {

constexpr std::int64_t climateServiceTime = 500000; // micro-seconds

} // namespace

ComfortReqs::ComfortReqs() : ReqHandler(ERadHwapi_GENIO) {}

Req* ComfortReqs::NewReq(void* msgHandle)
{
    return new ComfortReq(*this, msgHandle);
}

ComfortReq::ComfortReq(ComfortReqs& owner, void* msgHandle)
    : Req(owner, ERadHwapi_GENIO, msgHandle),
      m_reqs(owner),
      m_requester(ComfortReqMsg(msgHandle).GetSender()),
      m_transactionId(ComfortReqMsg(msgHandle)->transactionId),
      m_forwardedId(owner.nextForwardedId())
{
}

ComfortReq::~ComfortReq()
{
    AaTimerCancel(m_timer);
}

void ComfortReq::HandleReq()
{
    m_timer = AaTimerArm(climateServiceTime, static_cast<Req*>(this));
    ClimateStatusReqMsg forwarded(AaSysComSicadGet(climateServiceCpid, AaSysComGetOwnNid()), 0);
    if (m_timer == 0 || !forwarded.GetPayload()) {
        forwarded.Destroy();
        answerAndComplete(EComfort_Unknown);
        return;
    }
    forwarded->transactionId = m_forwardedId;
    forwarded.SetSender(Service::Get()->GetSicad());
    forwarded.Send();
}

void ComfortReq::HandleForwardedReqResp(void* msgHandle)
{
    ClimateStatusRespMsg reply(msgHandle);
    if (reply->transactionId != m_forwardedId) {
        return; // the next request is asked
    }
    const auto limit = static_cast<std::int32_t>(m_reqs.limit.load());
    answerAndComplete(reply->temperature > limit ? EComfort_TooWarm : EComfort_Comfortable);
}

void ComfortReq::HandleForwardedReqTimeout()
{
    answerAndComplete(EComfort_Unknown);
}

void ComfortReq::answerAndComplete(std::uint32_t comfort)
{
    ComfortRespMsg answer(m_requester, 0);
    if (answer.GetPayload()) {
        answer->transactionId = m_transactionId;
        answer->comfort = comfort;
        answer.SetSender(Service::Get()->GetSicad());
        answer.Send();
    }
    m_owner.ReqCompleted(this); // deletes this request
}

} // namespace dorn::examples
