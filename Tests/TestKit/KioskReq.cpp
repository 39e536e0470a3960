// SPDX-License-Identifier: MIT
#include "KioskReq.hpp"

#include "Service.hpp"

namespace kiosk {

using vel::hwapi::common::Req;
using vel::hwapi::common::ReqHandler;
using vel::hwapi::common::Service;

namespace {

constexpr std::int64_t supplierTime = 3'000'000; // micro-seconds

} // namespace

Req* KioskReqs::NewReq(void* msgHandle)
{
    return new KioskReq(*this, msgHandle);
}

KioskReq::KioskReq(ReqHandler& owner, void* msgHandle)
    : Req(owner, ERadHwapi_GENIO, msgHandle),
      m_customer(StockReqMsg(msgHandle).GetSender()),
      m_paper(StockReqMsg(msgHandle)->paper)
{
}

KioskReq::~KioskReq()
{
    AaTimerCancel(m_timer);
}

void KioskReq::HandleReq()
{
    m_timer = AaTimerArm(supplierTime, static_cast<Req*>(this));
    SupplyReqMsg question(AaSysComSicadGet(supplierCpid, AaSysComGetOwnNid()), 0);
    if (!question.GetPayload()) {
        answerAndComplete(0);
        return;
    }
    question->paper = m_paper;
    question.SetSender(Service::Get()->GetSicad());
    question.Send();
}

void KioskReq::HandleForwardedReqResp(void* msgHandle)
{
    SupplyRespMsg reply(msgHandle);
    if (reply->paper == m_paper) {
        answerAndComplete(reply->left);
    }
}

void KioskReq::HandleForwardedReqTimeout()
{
    answerAndComplete(0);
}

void KioskReq::answerAndComplete(std::uint32_t left)
{
    StockRespMsg answer(m_customer, 0);
    if (answer.GetPayload()) {
        answer->paper = m_paper;
        answer->left = left;
        answer.SetSender(Service::Get()->GetSicad());
        answer.Send();
    }
    m_owner.ReqCompleted(this); // deletes this request
}

} // namespace kiosk
