// SPDX-License-Identifier: MIT
#include "ComfortS.hpp"

#include "ClimateMessages.hpp"
#include "ComfortMessages.hpp"
#include "OwnUnit.hpp"
#include "reqforwarding/ReqDelegate.hpp"

namespace dorn::examples {

using vel::hwapi::common::ApiForwardTimeoutOutMsg;
using vel::hwapi::common::ReqDelegate;
using vel::hwapi::common::ReqHandler;

ComfortS::ComfortS() : Service("ComfortS", comfortServiceCpid, ERadHwapi_GENIO, ERadHwapiState_SumState) {}

void ComfortS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgDelegate(new ReqDelegate<ComfortReqMsg>(m_reqs, &ReqHandler::HandleNewReq, GetRadId()));
    AddMsgDelegate(new ReqDelegate<ClimateStatusRespMsg>(m_reqs, &ReqHandler::HandleForwardedReqResp, GetRadId()));
    AddMsgDelegate(
        new ReqDelegate<ApiForwardTimeoutOutMsg>(m_reqs, &ReqHandler::HandleForwardedReqTimeout, GetRadId()));
    SetObservedTag(comfortLimitTag);
}

void ComfortS::HandleConfigTagChange(std::string tag, unsigned int value)
{
    if (tag == comfortLimitTag) {
        m_reqs.limit.store(value);
    }
}

ComfortS::~ComfortS()
{
    UnSetObservedTag(comfortLimitTag);
}

} // namespace dorn::examples
