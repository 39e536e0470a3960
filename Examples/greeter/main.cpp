// SPDX-License-Identifier: MIT
#include "Service.hpp"
#include <cstdio>
using namespace vel::hwapi::common;

struct SGreetReq { char name[5]; };
struct SGreetResp { char text[32]; };
using GreetReqMsg = Msg<SGreetReq, 0x2001>;
using GreetRespMsg = Msg<SGreetResp, 0x2002>;

class GreeterS : public Service {
public:
    GreeterS() : Service("GreeterS", 0x0200, ERadHwapi_dummy2, ERadHwapiState_StartupState) {}
    void Init() override { AddMsgHandler(&GreeterS::HandleGreet); }
    void HandleGreet(GreetReqMsg request) {
        GreetRespMsg answer(request.GetSender(), 0);
        if (!answer.GetPayload()) return;
        std::snprintf(answer->text, sizeof answer->text, "Hello, %.5s!", request->name);
        answer.SetSender(GetSicad());
        answer.Send();
    }
};

int main(int argc, char** argv) { GreeterS service; return RunService(service, argc, argv); }
