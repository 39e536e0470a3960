// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include <cstring>

using namespace vel::hwapi::common;

namespace {

struct SEcho {
    char text[8];
};
using EchoReqMsg = Msg<SEcho, 0x3001>;
using EchoRespMsg = Msg<SEcho, 0x3002>;
using FailMsg = Msg<SEcho, 0x3003>;

/// Sends back what it gets.
class EchoS : public Service {
public:
    EchoS() : Service("EchoS", 0x0300, ERadHwapi_dummy2, ERadHwapiState_BasebandState) {}

private:
    void Init() override
    {
        AddMsgHandler(&EchoS::HandleEcho);
        AddMsgHandler(&EchoS::HandleFail);
    }
    void HandleEcho(EchoReqMsg request)
    {
        EchoRespMsg answer(request.GetSender(), 0);
        std::memcpy(answer->text, request->text, sizeof answer->text);
        answer.SetSender(GetSicad());
        answer.Send();
    }
    void HandleFail(FailMsg /*order*/) { throw RuntimeException("as ordered", __FILE__, __LINE__); }
};

} // namespace

int main(int argc, char** argv)
{
    EchoS service;
    return RunService(service, argc, argv) == 1 ? 0 : 1;
}
