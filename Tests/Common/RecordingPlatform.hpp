// SPDX-License-Identifier: MIT
/// @file RecordingPlatform.hpp
/// A stand-in for the platform that writes down what the library asks of it and answers as it is told.
///
/// It is linked in place of a provider, so that a test sees every call with its arguments and in its order. While one
/// lives, it answers; one lives at a time.
#pragma once

#include "AaConfigTag.h"
#include "AaSem.h"
#include "AaStartup.h"
#include "AaSysCom.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace dorn::test {

class RecordingPlatform {
public:
    RecordingPlatform();
    ~RecordingPlatform();
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;
    static RecordingPlatform& get();

    /// The calls so far, as C would read: `AaConfigTagSetU16("tessel.service.aatbts.cpid", 0x4D2)`. A log line reads
    /// `Error 0x20000 text`. Calls that only read are left out.
    std::vector<std::string> calls() const;
    /// Those of calls() that begin with @p beginning.
    std::vector<std::string> calls(std::string_view beginning) const;
    /// Those of calls() that do not declare a single R&D parameter: the domains have many.
    std::vector<std::string> callsWithoutParameters() const;
    void clearCalls();

    /// Has a function return another status than 0 from now on.
    void setResult(const std::string& function, std::int32_t result);

    std::function<TAaSysComCpid(TAaSysComCpid)>
        grantCpid; ///< what AaSysComUserRegister() grants; unset: what was asked
    TAaSysComNid nid = 0x0F01;
    std::map<TAaSysComSicad, std::uint32_t> boards; ///< what the node map gives for an address
    std::map<TAaSysComSicad, std::uint32_t> cpus;
    EAaProEuSchedulingPolicy policy = EAaProEuSchedulingPolicy_Fifo;
    std::optional<EAaProEuSchedulingPolicy> policyOfFailure; ///< what a call that fails stores; unset: nothing
    std::map<std::uint32_t, std::uint32_t> parameters;       ///< R&D parameters by identifier
    std::map<std::string, std::string> tags;                 ///< values of configuration tags by name
    bool canCreateMessages = true;
    bool canCreatePayloads = true; ///< false: messages are made without payload
    bool canHandOutValues = true;  ///< false: tags are read with success and null
    bool canCreateMutexes = true;
    std::vector<std::pair<std::string, TAaConfigTagObserver>> observers; ///< in the order of their registration

    /// What happens when a message is waited for and none is there: a test calls wakeUp() or queueMessage() here.
    std::function<void()> whenIdle;
    /// Called at the beginning of each call with its text.
    std::function<void(const std::string&)> onCall;

    /// Queues a message for the next receive.
    void queueMessage(TAaSysComMsgId id, std::string_view payload = {}, TAaSysComSicad sender = 0x0F010123U,
                      TAaSysComSicad receiver = 0x0F010456U);
    /// Messages that have been created or queued and not yet been sent or destroyed.
    std::size_t liveMessages() const;
    /// Values of tags that have been handed out and not yet released.
    std::size_t liveTagValues = 0;

    /// What a process that is asked to end does; false when the process would just have ended.
    bool requestEnd();

    // What the functions of the seam call.
    std::int32_t note(const std::string& call, const std::string& function);
    void* receive(std::int32_t timeout);
    void* createMessage(TAaSysComMsgId id, std::uint16_t size, TAaSysComSicad receiver);
    void endMessage(void* message);
    void wakeUp();
    TAaStartupShutdownHandler shutdownHandler = nullptr;
    /// Semaphores in the order in which they were created: the first one is number 1 in the calls. They end with the
    /// platform.
    std::vector<std::shared_ptr<AaSem>> semaphores;

private:
    mutable std::recursive_mutex m_mutex;
    std::vector<std::string> m_calls;
    std::map<std::string, std::int32_t> m_results;
    std::deque<void*> m_queue;
    std::size_t m_liveMessages = 0;
    bool m_wakeUpPends = false;
};

/// printf into a string.
std::string formatted(const char* format, ...) AA_PRINTF_FORMAT(1, 2);

} // namespace dorn::test
