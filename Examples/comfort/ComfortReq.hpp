// SPDX-License-Identifier: MIT
/// @file ComfortReq.hpp
/// "Is the board comfortable?", which only the climate service can tell.
#pragma once

#include "AaTimer.h"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <atomic>
#include <cstdint>

namespace dorn::examples {

class ComfortReqs;

/// One open question.
class ComfortReq : public vel::hwapi::common::Req {
public:
    ComfortReq(ComfortReqs& owner, void* msgHandle);
    ComfortReq(const ComfortReq&) = delete;
    ComfortReq& operator=(const ComfortReq&) = delete;
    ~ComfortReq() override;

    void HandleReq() override;
    void HandleForwardedReqResp(void* msgHandle) override;
    void HandleForwardedReqTimeout() override;

private:
    void answerAndComplete(std::uint32_t comfort);

    ComfortReqs& m_reqs;
    const unsigned int m_requester;
    const std::uint32_t m_transactionId; ///< the requester's
    const std::uint32_t m_forwardedId;   ///< ours, by which the climate service's reply is recognised
    TAaTimerId m_timer = 0;
};

/// All open questions.
class ComfortReqs : public vel::hwapi::common::ReqHandler {
public:
    ComfortReqs();

    vel::hwapi::common::Req* NewReq(void* msgHandle) override;

    std::uint32_t nextForwardedId() { return ++m_lastForwardedId; }

    /// Degrees Celsius. Set on a thread of the platform, read on the main EU.
    std::atomic<std::uint32_t> limit{55};

private:
    std::uint32_t m_lastForwardedId = 0;
};

} // namespace dorn::examples
