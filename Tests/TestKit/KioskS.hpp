// SPDX-License-Identifier: MIT
/// @file KioskS.hpp
/// A service that does a bit of everything a service does, for recipes: it sells newspapers.
#pragma once

#include "HwapiAlarm.hpp"
#include "KioskReq.hpp"
#include "Service.hpp"
#include "Worker.hpp"

#include <atomic>
#include <cstdint>

namespace kiosk {

/// Asks for a price; a paper has a number, from 1.
struct SPriceReq {
    std::uint32_t paper;
};
struct SPriceResp {
    std::uint32_t paper;
    std::uint32_t price; ///< in cents
};
/// Orders a paper. The order is written to the book by a worker, which then answers.
struct SOrderReq {
    std::uint32_t paper;
};
struct SOrderResp {
    std::uint32_t paper;
    std::uint32_t isWritten;
};

using PriceReqMsg = vel::hwapi::common::Msg<SPriceReq, 0x1011>;
using PriceRespMsg = vel::hwapi::common::Msg<SPriceResp, 0x1012>;
using OrderReqMsg = vel::hwapi::common::Msg<SOrderReq, 0x1013>;
using OrderRespMsg = vel::hwapi::common::Msg<SOrderResp, 0x1014>;

constexpr TAaSysComCpid kioskCpid = 0x0211;
constexpr const char* priceTag = "kiosk.price";           ///< cents; 200 without it
constexpr const char* shownTag = "kiosk.shown";           ///< the price that customers see; set by the kiosk
constexpr ERadHwapi discountParameter = ERadHwapi_dummy2; ///< percent
constexpr const char* kioskFolder = "/ffs/run/kiosk";
constexpr const char* orderBook = "/ffs/run/kiosk/orders";    ///< a line for each order
constexpr const char* closedMarker = "/ffs/run/kiosk/closed"; ///< a kiosk that finds this directory does not start

class KioskS : public vel::hwapi::common::Service {
public:
    KioskS();
    ~KioskS() override;

    void Init() override;

private:
    class Order;

    void HandlePrice(PriceReqMsg request);
    void HandleOrder(OrderReqMsg request);
    void HandleConfigTagChange(std::string tag, unsigned int value) override;
    bool HandleRedundancyStateCommand(vel::hwapi::common::ERedundancyCommand command,
                                      vel::hwapi::common::ERedundancyState* state) override;
    std::uint32_t priceToday() const;

    std::atomic<std::uint32_t> m_price{200}; ///< set on a thread of the platform
    KioskReqs m_stockReqs;
    vel::hwapi::common::HwapiAlarm m_alarm{kioskCpid, ERadHwapi_GENIO};
    vel::hwapi::common::Worker& m_clerk = *vel::hwapi::common::Worker::Get(7);
};

} // namespace kiosk
