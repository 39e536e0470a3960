// SPDX-License-Identifier: MIT
/// @file ForwardingS.hpp
/// A service that forwards what it is asked to a server and passes the reply on.
#pragma once

#include "AaTimer.h"
#include "Msg.hpp"
#include "Service.hpp"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <cstdint>

namespace dorn::test {

enum EResult : std::uint32_t { EResult_Answered = 1, EResult_TimedOut = 2 };

/// From the requester to the service.
struct SAsk {
    std::uint32_t number;
    std::uint32_t timeout;        ///< micro-seconds
    std::uint32_t leavesItsTimer; ///< 1: the time-out is not cancelled, so that it comes late
};
/// The service's answer.
struct SAnswer {
    std::uint32_t number;
    std::uint32_t result; ///< EResult
};
/// Between service and server, both ways.
struct SForwarded {
    std::uint32_t number;
};
using AskMsg = vel::hwapi::common::Msg<SAsk, 0x3001>;
using AnswerMsg = vel::hwapi::common::Msg<SAnswer, 0x3002>;
using ForwardedReqMsg = vel::hwapi::common::Msg<SForwarded, 0x3003>;
using ForwardedRespMsg = vel::hwapi::common::Msg<SForwarded, 0x3004>;

constexpr TAaSysComCpid serverCpid = 0x457;

class ForwardedReqs : public vel::hwapi::common::ReqHandler {
public:
    ForwardedReqs() : ReqHandler(ERadHwapi_PrintBoundaryIf) {}
    vel::hwapi::common::Req* NewReq(void* msgHandle) override;
    std::size_t open() const { return m_reqs.size(); }
};

class ForwardingS : public vel::hwapi::common::Service {
public:
    ForwardingS();
    void Init() override;

    /// Only while no message is in hand.
    std::size_t open() const { return m_reqs.open(); }

private:
    ForwardedReqs m_reqs;
};

} // namespace dorn::test
