// SPDX-License-Identifier: MIT
#include "GreeterS.hpp"

#include "AaFile.h"
#include "AaSysLog.h"

#include <array>
#include <cstdlib>

namespace greeter {
namespace {

constexpr std::int64_t oneMinute = 60'000'000;
constexpr const char* guestBookFile = "/ffs/run/guestbook"; ///< visits before this start

std::uint32_t earlierVisits()
{
    std::array<char, 16> line{};
    if (AaFile* const file = AaFileOpen(guestBookFile, "r")) {
        AaFileReadLine(file, line.data(), line.size());
        AaFileClose(file);
    }
    return static_cast<std::uint32_t>(std::strtoul(line.data(), nullptr, 10));
}

} // namespace

GreeterS::GreeterS() : Service("Greeter", 0x0201, ERadHwapi_GENIO, ERadHwapiState_ClimateState)
{
    GetArgumentParser().SetArgumentInfo("-g Greet in a foreign language");
}

GreeterS::~GreeterS()
{
    AaSemDestroy(&m_guestBook);
}

void GreeterS::Init()
{
    m_guestBook = AaSemCreateC(1);
    if (!m_guestBook) {
        throw InitFailedException("No guest book", __FILE__, __LINE__);
    }
    m_visits = earlierVisits();
    AddMsgHandler(&GreeterS::HandleGreet);
    AddMsgHandler(&GreeterS::HandleTimeout);
}

void GreeterS::HandleGreet(GreetReqMsg request)
{
    if (request->visitor == 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, m_radId, "A visitor without name is not greeted");
        return;
    }
    m_lastVisitor = request.GetSender();
    GreetRespMsg response(m_lastVisitor, 0);
    if (!response.GetPayload()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Visitor %u cannot be greeted", request->visitor);
        return;
    }
    response->visitor = request->visitor;
    response->visits = ++m_visits;
    response.Send();
    AaTimerArm(oneMinute, this);
}

void GreeterS::HandleTimeout(TimeoutMsg /*timeout*/)
{
    GoodbyeIndMsg goodbye(m_lastVisitor, 0);
    if (goodbye.GetPayload()) {
        goodbye->visits = m_visits;
        goodbye.Send();
    }
}

} // namespace greeter
