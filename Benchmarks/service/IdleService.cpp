// SPDX-License-Identifier: MIT
/// @file IdleService.cpp
/// A service that waits for messages and has a handler for one.
#include "Service.hpp"

namespace {

struct SNothing {};
using NothingMsg = vel::hwapi::common::Msg<SNothing, 0x5301>;

class BenchIdleS : public vel::hwapi::common::Service {
public:
    BenchIdleS() : Service("BenchIdle", 0x5301, ERadHwapi_HwCtrlS, ERadHwapiState_HwCtrlSState) {}
    void Init() override { AddMsgHandler(&BenchIdleS::HandleNothing); }
    void HandleNothing(NothingMsg) {}
};

} // namespace

int main(int argc, char** argv)
{
    BenchIdleS service;
    return static_cast<int>(service.Startup(argc, argv));
}
