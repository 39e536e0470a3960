// SPDX-License-Identifier: MIT
#include "board/BoardActions.hpp"

#include "ClockMessages.hpp"
#include "RedundancyMessages.hpp"
#include "ResetMessages.hpp"
#include "SfpMessages.hpp"
#include "answers/LinkText.hpp"
#include "node/AskedService.hpp"

#include <algorithm>
#include <cstring>
#include <span>

namespace dorn::tool {
namespace {

using namespace examples;

template <class Request, class Response>
BoardAction actionOf(std::string label, TAaSysComCpid cpid, const RecordOf<Request>& record)
{
    const auto bytes = std::as_bytes(std::span(&record, 1));
    return {std::move(label), cpid, Request::ID, Response::ID, Bytes(bytes.begin(), bytes.end())};
}

} // namespace

std::uint32_t BoardAction::transaction() const
{
    std::uint32_t id = 0;
    std::memcpy(&id, payload.data(), std::min(sizeof id, payload.size()));
    return id;
}

BoardAction plugAction(std::uint32_t cage, bool isPlugged)
{
    return actionOf<SfpPlugReqMsg, SfpPlugRespMsg>((isPlugged ? "plug cage " : "pull cage ") + std::to_string(cage),
                                                   sfpServiceCpid, {newTransactionId(), cage, isPlugged ? 1U : 0U});
}

BoardAction breakAction(const SLink& link, std::uint32_t parts)
{
    return actionOf<LinkBreakReqMsg, LinkBreakRespMsg>((parts != 0 ? "break link " : "mend link ") + linkName(link),
                                                       linkServiceCpid, {newTransactionId(), link.name, parts});
}

BoardAction referenceAction(bool isThere)
{
    const std::uint32_t action = isThere ? EClockAction_RestoreReference : EClockAction_LoseReference;
    return actionOf<ClockActReqMsg, ClockActRespMsg>(isThere ? "restore clock reference" : "lose clock reference",
                                                     clockServiceCpid, {newTransactionId(), action, 0});
}

BoardAction switchAction(bool isActive)
{
    const std::uint32_t role = isActive ? EUnitRole_Active : EUnitRole_Standby;
    return actionOf<RedundancySwitchReqMsg, RedundancySwitchRespMsg>(isActive ? "switch over to active"
                                                                              : "switch over to standby",
                                                                     redundancyManagerCpid, {newTransactionId(), role});
}

BoardAction resetAction()
{
    SResetReq record{newTransactionId(), 1, {}};
    constexpr std::string_view why = "asked for with a key";
    std::copy(why.begin(), why.end(), record.text.begin());
    BoardAction action = actionOf<ResetReqMsg, ResetRespMsg>("reset the board", resetServiceCpid, record);
    action.isSilenceExpected = true;
    return action;
}

BoardAction faultAction(board::DriverFunction function)
{
    BoardAction action;
    action.label = "fail the next " + std::string(function.name());
    action.fault = function;
    return action;
}

} // namespace dorn::tool
