// SPDX-License-Identifier: MIT
#include "ComfortS.hpp"

#include "BoardPlan.hpp"
#include "ClimateMessages.hpp"
#include "ComfortMessages.hpp"
#include "OwnUnit.hpp"
#include "reqforwarding/ReqDelegate.hpp"

#include <array>

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
    takePlannedLimit(); // which a tag overrules
    SetObservedTag(comfortLimitTag);
}

void ComfortS::takePlannedLimit()
{
    constexpr std::int32_t hottest = 125; // degrees Celsius, what the sensor can tell
    std::array<PlanNumber, 1> limit{{{"limit", 0, hottest, static_cast<std::int32_t>(m_reqs.limit.load())}}};
    applyPlan(GetRadId(), comfortPlanObject, limit);
    m_reqs.limit.store(static_cast<std::uint32_t>(limit.front().value));
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
