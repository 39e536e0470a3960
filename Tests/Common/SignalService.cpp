// SPDX-License-Identifier: MIT
// A service that can send itself SIGTERM at a given step and prints how far it has come.
#include "Service.hpp"

#include <csignal>
#include <cstdio>
#include <string>
#include <unistd.h>

using namespace vel::hwapi::common;

namespace {

struct Nothing {};
using GoMsg = Msg<Nothing, 0x1234>;

class SignalS : public Service {
public:
    SignalS() : Service("Signal", 0x777, ERadHwapi_LED, ERadHwapiState_LedState)
    {
        GetArgumentParser().SetArgumentInfo(
            "--signal-in=STEP Ask the process to end in this step: init, message, end\n");
    }

    void Init() override
    {
        AddMsgHandler(&SignalS::HandleGo);
        signalIn("init");
        const std::string step = GetArgumentParser().ReadArgument("signal-in");
        if (step == "message" || step == "end") {
            GoMsg go(GetSicad(), 0);
            go.Send();
        }
    }

    unsigned int Run() override
    {
        if (!m_hasWaited) {
            m_hasWaited = true;
            std::printf("waiting\n");
        }
        return Service::Run();
    }

    /// Asks this process to end if @p step is the one that the command line names.
    void signalIn(const char* step)
    {
        if (GetArgumentParser().ReadArgument("signal-in") == step) {
            kill(getpid(), SIGTERM);
            std::printf("signalled in %s\n", step);
        }
    }

private:
    void HandleGo(GoMsg /*go*/)
    {
        signalIn("message");
        std::printf("message finished\n");
        if (GetArgumentParser().ReadArgument("signal-in") == "end") {
            Terminate();
        }
    }

    bool m_hasWaited = false;
};

} // namespace

int main(int argc, char** argv)
{
    SignalS service;
    const int result = RunService(service, argc, argv);
    if (service.GetArgumentParser().ReadArgument("help") != "arg on") {
        std::printf("state %u\n", service.GetServiceStateRad());
    }
    service.signalIn("end");
    return result;
}
