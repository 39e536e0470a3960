// SPDX-License-Identifier: MIT
#include "reqforwarding/Req.hpp"

#include "AaSysLog.h"
#include "MsgHandlingException.hpp"

namespace vel::hwapi::common {

Req::Req(ReqHandler& owner, ERadHwapi printId, void* msgHandle)
    : m_owner(owner), m_printId(printId), m_msgHandle(msgHandle)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "Req::Req");
}

Req::~Req()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, m_printId, "Req::~Req this: '%p'", static_cast<void*>(this));
}

void Req::HandleReq()
{
    throw MsgHandlingException("Req::HandleReq NOT IMPLEMENTED", __FILE__, __LINE__);
}

void Req::HandleForwardedReqResp(void* /*msgHandle*/)
{
    throw MsgHandlingException("Req::HandleForwardedReqResp NOT IMPLEMENTED", __FILE__, __LINE__);
}

void Req::HandleForwardedReqTimeout()
{
    throw MsgHandlingException("Req::HandleForwardedReqTimeout NOT IMPLEMENTED", __FILE__, __LINE__);
}

} // namespace vel::hwapi::common
