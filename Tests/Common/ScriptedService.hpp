// SPDX-License-Identifier: MIT
/// @file ScriptedService.hpp
/// A service whose hooks a test fills in.
#pragma once

#include "Service.hpp"

#include <functional>
#include <string>
#include <vector>

namespace dorn::test {

class ScriptedService : public vel::hwapi::common::Service {
public:
    static constexpr ERadHwapi radId = ERadHwapi_PrintBoundaryIf;             // 0x20075
    static constexpr ERadHwapiState stateRadId = ERadHwapiState_ClimateState; // 0x22000B
    static constexpr TAaSysComCpid cpid = 0x456;

    ScriptedService() : Service("Ping", cpid, radId, stateRadId) {}

    std::function<unsigned int()> preStartup;
    std::function<void()> init;
    std::function<unsigned int()> run; ///< unset: Service::Run()

    unsigned int PreStartup() override { return preStartup ? preStartup() : Service::PreStartup(); }
    void Init() override
    {
        if (init) {
            init();
        }
    }
    unsigned int Run() override { return run ? run() : Service::Run(); }
    void SetServiceStateRad(unsigned int state) override
    {
        states.push_back(state);
        Service::SetServiceStateRad(state);
    }

    std::vector<unsigned int> states; ///< as they were given to SetServiceStateRad()
    unsigned int handled = 0;         ///< for the test's own counting

    /// Startup() with these arguments behind the program's name.
    unsigned int start(std::vector<std::string> words = {})
    {
        words.insert(words.begin(), "bin/DornPingExe");
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        return Startup(static_cast<int>(words.size()), argv.data());
    }

    using Service::m_cpId;
    using Service::m_useCommonServiceState;
    using Service::m_wfctMapSem;
};

/// Handles messages by calling a function; tells of its end.
class ScriptedDelegate : public vel::hwapi::common::MsgDelegateBase {
public:
    ScriptedDelegate(unsigned int msgId, std::function<void(void*)> handle, int* ends = nullptr)
        : MsgDelegateBase(msgId), m_handle(std::move(handle)), m_ends(ends)
    {
    }
    ~ScriptedDelegate() override
    {
        if (m_ends) {
            ++*m_ends;
        }
    }
    void HandleMsg(void* message) override { m_handle(message); }

private:
    std::function<void(void*)> m_handle;
    int* m_ends;
};

} // namespace dorn::test
