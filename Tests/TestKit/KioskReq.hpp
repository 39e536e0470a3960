// SPDX-License-Identifier: MIT
/// @file KioskReq.hpp
/// Questions for the stock, which the kiosk forwards to its supplier.
#pragma once

#include "AaTimer.h"
#include "Msg.hpp"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <cstdint>

namespace kiosk {

/// Asks how many papers are left.
struct SStockReq {
    std::uint32_t paper;
};
struct SStockResp {
    std::uint32_t paper;
    std::uint32_t left; ///< 0 also when the supplier has not answered
};
/// The same between kiosk and supplier.
struct SSupplyReq {
    std::uint32_t paper;
};
struct SSupplyResp {
    std::uint32_t paper;
    std::uint32_t left;
};

using StockReqMsg = vel::hwapi::common::Msg<SStockReq, 0x1015>;
using StockRespMsg = vel::hwapi::common::Msg<SStockResp, 0x1016>;
using SupplyReqMsg = vel::hwapi::common::Msg<SSupplyReq, 0x1017>;
using SupplyRespMsg = vel::hwapi::common::Msg<SSupplyResp, 0x1018>;

constexpr TAaSysComCpid supplierCpid = 0x0212;

class KioskReqs : public vel::hwapi::common::ReqHandler {
public:
    KioskReqs() : ReqHandler(ERadHwapi_GENIO) {}
    vel::hwapi::common::Req* NewReq(void* msgHandle) override;
};

/// One question: asked of the supplier, answered after three seconds at the latest.
class KioskReq : public vel::hwapi::common::Req {
public:
    KioskReq(vel::hwapi::common::ReqHandler& owner, void* msgHandle);
    ~KioskReq() override;
    KioskReq(const KioskReq&) = delete;
    KioskReq& operator=(const KioskReq&) = delete;

    void HandleReq() override;
    void HandleForwardedReqResp(void* msgHandle) override;
    void HandleForwardedReqTimeout() override;

private:
    void answerAndComplete(std::uint32_t left);

    const unsigned int m_customer;
    const std::uint32_t m_paper;
    TAaTimerId m_timer = 0;
};

} // namespace kiosk
