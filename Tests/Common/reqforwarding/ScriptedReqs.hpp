// SPDX-License-Identifier: MIT
/// @file ScriptedReqs.hpp
/// Requests whose operations a test fills in.
#pragma once

#include "RecordingPlatform.hpp"
#include "reqforwarding/Req.hpp"
#include "reqforwarding/ReqHandler.hpp"

#include <functional>
#include <string>
#include <vector>

namespace dorn::test {

constexpr ERadHwapi printId = ERadHwapi_PrintBoundaryIf; // 0x20075

class ScriptedReq : public vel::hwapi::common::Req {
public:
    explicit ScriptedReq(vel::hwapi::common::ReqHandler& owner, void* msgHandle = nullptr)
        : Req(owner, printId, msgHandle)
    {
    }
    ~ScriptedReq() override
    {
        if (onEnd) {
            onEnd();
        }
    }
    ScriptedReq(const ScriptedReq&) = delete;
    ScriptedReq& operator=(const ScriptedReq&) = delete;

    std::function<void()> onReq;
    std::function<void(void*)> onResp;
    std::function<void()> onTimeout;
    std::function<void()> onEnd;

    void HandleReq() override { call(onReq); }
    void HandleForwardedReqResp(void* msgHandle) override
    {
        if (const auto function = onResp) { // a copy: the request may delete itself
            function(msgHandle);
        }
    }
    void HandleForwardedReqTimeout() override { call(onTimeout); }

    void* message() const { return m_msgHandle; }
    void complete() { m_owner.ReqCompleted(this); }

private:
    static void call(std::function<void()> function)
    {
        if (function) {
            function();
        }
    }
};

/// Makes what the test says.
class ScriptedReqs : public vel::hwapi::common::ReqHandler {
public:
    explicit ScriptedReqs(ERadHwapi id = printId) : ReqHandler(id) {}

    std::function<vel::hwapi::common::Req*(void*)> onNew;

    vel::hwapi::common::Req* NewReq(void* msgHandle) override { return onNew ? onNew(msgHandle) : nullptr; }

    /// Adds a request that does nothing until it is told what.
    ScriptedReq& add()
    {
        auto* const req = new ScriptedReq(*this); // NOLINT: the handler owns it
        HandleNewReq(req);
        return *req;
    }

    std::vector<vel::hwapi::common::Req*> open() const { return {m_reqs.begin(), m_reqs.end()}; }
};

} // namespace dorn::test
