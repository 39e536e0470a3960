// SPDX-License-Identifier: MIT
/// @file GreeterS.hpp
/// A small service: greets visitors, and says goodbye a minute later.
#pragma once

#include "AaSem.h"
#include "AaTimer.h"
#include "Service.hpp"

#include <cstdint>

namespace greeter {

using vel::hwapi::common::Msg;

struct SGreetReq {
    std::uint32_t visitor;
};
struct SGreetResp {
    std::uint32_t visitor;
    std::uint32_t visits; ///< of all visitors so far
};
struct SGoodbyeInd {
    std::uint32_t visits;
};
struct STimeout {
    void* identity;
};

using GreetReqMsg = Msg<SGreetReq, 0x1001>;
using GreetRespMsg = Msg<SGreetResp, 0x1002>;
using GoodbyeIndMsg = Msg<SGoodbyeInd, 0x1003>;
using TimeoutMsg = Msg<STimeout, AA_TIMER_MSG_TIMEOUT>;

class GreeterS : public vel::hwapi::common::Service {
public:
    GreeterS();
    ~GreeterS() override;

    void Init() override;

private:
    void HandleGreet(GreetReqMsg request);
    void HandleTimeout(TimeoutMsg timeout);

    AaSem* m_guestBook = nullptr;
    unsigned int m_lastVisitor = 0; ///< address of the one who is told goodbye
    std::uint32_t m_visits = 0;
};

} // namespace greeter
