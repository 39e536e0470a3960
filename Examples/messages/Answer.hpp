// SPDX-License-Identifier: MIT
/// @file Answer.hpp
/// Answering a request, as nearly every handler does; ClimateS::HandleStatusReq() has it written out.
#pragma once

#include "AaSysLog.h"
#include "Service.hpp"

#include <cstddef>

namespace dorn::examples {

/// Makes an answer with a record of zeros, has @p fill write into it, and sends it back as the service's. Where the
/// record has a `transactionId`, that is the request's. Without memory for it the request stays unanswered, which is
/// logged, and @p fill is not called.
/// @tparam AnswerMsg the answer's Msg
/// @param bytesBehind payload behind the record
/// @param fill is given the answer
template <class AnswerMsg, class RequestMsg, class Fill>
void answerTo(RequestMsg request, vel::hwapi::common::Service& service, std::size_t bytesBehind, const Fill& fill)
{
    constexpr std::size_t recordSize = sizeof(*AnswerMsg(nullptr).GetPayload());
    AnswerMsg answer(request.GetSender(), static_cast<int>(recordSize + bytesBehind));
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, service.GetRadId(), "No memory to answer 0x%08X",
                       request.GetSender());
        return;
    }
    fill(answer);
    if constexpr (requires { answer->transactionId; }) {
        answer->transactionId = request->transactionId;
    }
    answer.SetSender(service.GetSicad());
    answer.Send();
}

/// The same with nothing behind the record.
template <class AnswerMsg, class RequestMsg, class Fill>
void answerTo(RequestMsg request, vel::hwapi::common::Service& service, const Fill& fill)
{
    answerTo<AnswerMsg>(request, service, 0, fill);
}

} // namespace dorn::examples
