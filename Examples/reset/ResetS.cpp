// SPDX-License-Identifier: MIT
#include "ResetS.hpp"

#include "AaSysLog.h"
#include "Answer.hpp"
#include "OwnUnit.hpp"
#include "ResetShared.h"

#include <cstring>
#include <string>

namespace dorn::examples {
namespace {

/// Counts this start in the field for it. @return the starts so far
std::uint32_t countStart()
{
    std::uint32_t count = 0;
    ResetText text{};
    ApiResetRpramGet(ERP_RAM_field_hwapiResetLoopCounter, &count, text.data());
    ++count;
    ApiResetRpramSet(ERP_RAM_field_hwapiResetLoopCounter, count, "starts");
    return count;
}

std::string textOf(const ResetText& text)
{
    return {text.data(), strnlen(text.data(), text.size())};
}

} // namespace

ResetS::ResetS() : Service("ResetS", resetServiceCpid, ERadHwapi_RESET, ERadHwapiState_ResetState) {}

void ResetS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&ResetS::HandleReset);
    AddMsgHandler(&ResetS::HandleShow);
    m_lastReset.startCount = countStart();
    m_lastReset.isKnown =
        ApiResetRpramGet(ERP_RAM_field_ResetType, &m_lastReset.reason, m_lastReset.text.data()) == 0 ? 1 : 0;
    if (m_lastReset.isKnown) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, GetRadId(), "Start %u, last reset because of %u: %s",
                       m_lastReset.startCount, m_lastReset.reason, m_lastReset.text.data());
    }
}

void ResetS::HandleReset(ResetReqMsg request)
{
    const std::string text = textOf(request->text);
    if (ApiResetRpramSet(ERP_RAM_field_ResetType, request->reason, text.c_str()) != 0) {
        answerReset(request, EResetStatus_NotRemembered);
        return;
    }
    ApiResetMcu();
    answerReset(request, EResetStatus_NotReset);
}

void ResetS::HandleShow(ResetShowReqMsg request)
{
    answerTo<ResetShowRespMsg>(request, *this, [&](ResetShowRespMsg answer) { *answer.GetPayload() = m_lastReset; });
}

void ResetS::answerReset(ResetReqMsg request, EResetStatus status)
{
    answerTo<ResetRespMsg>(request, *this, [&](ResetRespMsg answer) { answer->status = status; });
}

} // namespace dorn::examples
