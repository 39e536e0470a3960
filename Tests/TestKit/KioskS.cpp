// SPDX-License-Identifier: MIT
#include "KioskS.hpp"

#include "AaConfigTag.h"
#include "AaFile.h"
#include "AaSysLog.h"
#include "new/ApiAutodetInfo.h"
#include "reqforwarding/ReqDelegate.hpp"

#include <array>
#include <string>

namespace kiosk {

using vel::hwapi::common::AbstractWorker;
using vel::hwapi::common::ApiForwardTimeoutOutMsg;
using vel::hwapi::common::ERedundancyCommand;
using vel::hwapi::common::ERedundancyState;
using vel::hwapi::common::HwapiAlarm;
using vel::hwapi::common::ReqDelegate;
using vel::hwapi::common::ReqHandler;

namespace {

/// Appends an order to the book.
bool writeOrder(std::uint32_t paper)
{
    AaFile* const book = AaFileOpen(orderBook, "a");
    if (!book) {
        return false;
    }
    const std::string line = "paper " + std::to_string(paper) + "\n";
    const auto size = static_cast<std::int32_t>(line.size());
    const bool isWritten = AaFileWrite(book, line.data(), static_cast<std::uint32_t>(size)) == size;
    return AaFileClose(book) == 0 && isWritten;
}

} // namespace

/// An order on its way into the book.
class KioskS::Order : public AbstractWorker::Task {
public:
    Order(KioskS& kiosk, std::uint32_t paper, unsigned int customer)
        : m_kiosk(kiosk), m_paper(paper), m_customer(customer)
    {
    }

    void Perform() override
    {
        const bool isWritten = writeOrder(m_paper);
        if (!isWritten) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_kiosk.GetRadId(), "Order of paper %u not written", m_paper);
            m_kiosk.m_alarm.sendAlarmMsg(EFaultId_FileSystemFailure, &m_paper, sizeof m_paper);
        }
        OrderRespMsg answer(m_customer, 0);
        if (answer.GetPayload()) {
            answer->paper = m_paper;
            answer->isWritten = isWritten ? 1 : 0;
            answer.SetSender(m_kiosk.GetSicad());
            answer.Send();
        }
    }

private:
    KioskS& m_kiosk;
    const std::uint32_t m_paper;
    const unsigned int m_customer;
};

KioskS::KioskS() : Service("Kiosk", kioskCpid, ERadHwapi_GENIO, ERadHwapiState_ClimateState) {}

KioskS::~KioskS()
{
    UnSetObservedTag(priceTag);
}

void KioskS::Init()
{
    if (AaFileDirExists(closedMarker)) {
        throw InitFailedException("The kiosk is closed", __FILE__, __LINE__);
    }
    AaFileCreateDir(kioskFolder);
    std::array<char, 8> unit{};
    if (ApiGetLocalUnitId(unit.data(), unit.size())) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Vip, GetRadId(), "A kiosk on a %s", unit.data());
    }
    if (!m_clerk.IsSetupDone()) {
        m_clerk.Setup(GetRadId(), "Clerk");
    }
    AddMsgHandler(&KioskS::HandlePrice);
    AddMsgHandler(&KioskS::HandleOrder);
    AddMsgDelegate(new ReqDelegate<StockReqMsg>(m_stockReqs, &ReqHandler::HandleNewReq, GetRadId()));
    AddMsgDelegate(new ReqDelegate<SupplyRespMsg>(m_stockReqs, &ReqHandler::HandleForwardedReqResp, GetRadId()));
    AddMsgDelegate(
        new ReqDelegate<ApiForwardTimeoutOutMsg>(m_stockReqs, &ReqHandler::HandleForwardedReqTimeout, GetRadId()));
    AddRedundancyHandler();
    SetObservedTag(priceTag);
}

std::uint32_t KioskS::priceToday() const
{
    return m_price.load() * (100 - AaConfigRadGetValue(discountParameter)) / 100;
}

void KioskS::HandlePrice(PriceReqMsg request)
{
    PriceRespMsg answer(request.GetSender(), 0);
    if (!answer.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, GetRadId(), "Price of paper %u not told", request->paper);
        return;
    }
    answer->paper = request->paper;
    answer->price = priceToday();
    answer.SetSender(GetSicad());
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, GetRadId(), "Paper %u costs %u", request->paper, answer->price);
    answer.Send();
}

void KioskS::HandleOrder(OrderReqMsg request)
{
    m_clerk.AssignTaskAndGiveOwnership(new Order(*this, request->paper, request.GetSender()));
}

void KioskS::HandleConfigTagChange(std::string tag, unsigned int value)
{
    if (tag == priceTag) {
        m_price.store(value);
        AaConfigTagSetU32(shownTag, value);
    }
}

bool KioskS::HandleRedundancyStateCommand(ERedundancyCommand command, ERedundancyState* state)
{
    if (command == vel::hwapi::common::ERedundancyCommand_PrepareActive && AaFileDirExists("/ffs/run/kiosk/occupied")) {
        *state = vel::hwapi::common::ERedundancyState_HwapiFailure;
        return true;
    }
    return Service::HandleRedundancyStateCommand(command, state);
}

} // namespace kiosk
