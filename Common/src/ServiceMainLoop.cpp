// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaConfigRad.h"
#include "AaStartup.h"
#include "AaSysLog.h"
#include "ServiceState.hpp"
#include "hwapiMsgQueue.h"
#include "init/ApiStartup.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <thread>

namespace vel::hwapi::common {
namespace {

constexpr std::uint32_t mainEuStackSize = 4096;
constexpr std::uint32_t mainEuPriority = 10;

constinit std::atomic<Service*> startedService{nullptr};
constinit std::atomic<TAaProEuId> mainEuId{0};
constinit std::atomic<bool> endRequested{false};
constinit std::atomic<unsigned int> handlersAtWork{0};

/// The process has been asked to end. Runs on any thread and in signal handlers.
void requestEnd()
{
    handlersAtWork.fetch_add(1);
    if (Service* const service = startedService.load()) {
        service->Terminate();
        endRequested.store(true);
        if (const TAaProEuId eu = mainEuId.load(); eu != 0) {
            AaSysComEuWakeUp(eu);
        }
    }
    handlersAtWork.fetch_sub(1);
}

/// Called by the main EU before it waits. A request may have come before the EU was known, and its wake-up may have
/// been used up by a receive of the service's own; whichever of the two sides comes second sees what the other has
/// stored.
void wakeUpIfEndRequested()
{
    if (endRequested.load()) {
        AaSysComEuWakeUp(AaProEuCurrent());
    }
}

/// Has requests to end the process end the service instead, as long as it lives.
class ShutdownRequests {
public:
    explicit ShutdownRequests(Service& service)
    {
        endRequested.store(false);
        mainEuId.store(0);
        startedService.store(&service);
        AaStartupSetShutdownHandler(requestEnd);
    }
    ShutdownRequests(const ShutdownRequests&) = delete;
    ShutdownRequests& operator=(const ShutdownRequests&) = delete;
    ~ShutdownRequests()
    {
        AaStartupSetShutdownHandler(nullptr);
        startedService.store(nullptr);
        while (handlersAtWork.load() != 0) { // one that has begun on another thread still uses the service
            std::this_thread::yield();
        }
    }
};

struct DestroyMessage {
    void operator()(void* message) const { AaSysComMsgDestroy(&message); }
};
using ReceivedMessage = std::unique_ptr<void, DestroyMessage>;

void logEnd(ERadHwapi radId, const CHwapiException& reason)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, radId, "%s : %s (file: %s, line: %zd)", reason.what(),
                   reason.getDescription().c_str(), reason.getFile().c_str(), reason.getLine());
}

} // namespace

unsigned int Service::Startup(int argc, char** argv)
{
    const std::string errors = m_argParser.Parse(argc, argv);
    if (!errors.empty()) {
        std::fprintf(stderr,
                     "Invalid arguments: %s\nTry Dorn%sExe with '-h' or '--help' agruments for usage information\n",
                     errors.c_str(), m_name.c_str());
        return 0;
    }
    if (isHelpWanted()) {
        std::fprintf(stderr, "Usage:\nDorn%sExe [options]\n\n%s", m_name.c_str(), m_argParser.GetHelp().c_str());
        return 1;
    }
    PreStartup();
    if (ApiStartupInitializeExecutable(argc, argv, m_name.c_str(), m_id) != 1) {
        throw InitFailedException("Failed to set initialize executable", __FILE__, __LINE__);
    }
    if (m_verbose == 1) {
        AaConfigRadSetValue(m_radId, m_verbose);
    }
    SetServiceStateRad(EServiceState_Starting);
    return runMainEu();
}

bool Service::isHelpWanted()
{
    return m_argParser.ReadArgument("h") == "arg on" || m_argParser.ReadArgument("help") == "arg on";
}

unsigned int Service::runMainEu()
{
    EAaProEuSchedulingPolicy policy = EAaProEuSchedulingPolicy_Background;
    std::int32_t status = AaProEeGetDefaultSchedulingPolicy(&policy);
    if (status != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "AaProEeGetDefaultSchedulingPolicy failed %d", status);
    }

    unsigned int exitCode = 0;
    unsigned int* const exitCodeAddress = &exitCode;
    const std::string euName = m_name + "Main";
    TAaProEuId euId = 0;
    const ShutdownRequests shutdownRequests(*this);
    status = AaSysComEuCreateAndStartWithPolicy(&euId, euName.c_str(), ServiceMainEu, mainEuStackSize, policy,
                                                mainEuPriority, &exitCodeAddress, sizeof(exitCodeAddress), 1);
    if (status != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s main EU creation failed %d", m_name.c_str(), status);
        return 0;
    }
    if (exitCode != 1) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "%s main EU died unexpectedly", m_name.c_str());
        return 0;
    }
    return 1;
}

void* Service::ServiceMainEu(void* args)
{
    unsigned int* const exitCode = *static_cast<unsigned int**>(args);
    Service* const service = Get();
    mainEuId.store(AaProEuCurrent());
    try {
        service->SetServiceStateRad(EServiceState_Starting);
        service->InitEu();
        do {
            service->SetServiceStateRad(EServiceState_Waiting);
            wakeUpIfEndRequested();
        } while (service->Run() != 0);
        *exitCode = 1;
        service->SetServiceStateRad(EServiceState_Ended);
        return nullptr;
    } catch (const InitFailedException& reason) {
        logEnd(service->m_radId, reason);
    } catch (const RuntimeException& reason) {
        logEnd(service->m_radId, reason);
    } catch (...) {
        if (!std::current_exception()) {
            throw; // no exception, but the thread being cancelled
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, service->m_radId, "Unexpected exception in %s:%i", __FILE__,
                       __LINE__);
    }
    *exitCode = 0;
    service->SetServiceStateRad(EServiceState_Failed);
    return nullptr;
}

void Service::InitEu()
{
    try {
        m_cpId = AaSysComUserRegister(m_id, AaProEuCurrent());
        if (m_cpId != m_id) {
            throw InitFailedException("Failed to connect to middleware", __FILE__, __LINE__);
        }
        hwapiMsgQueueInit();
        Init();
    } catch (const InitFailedException& reason) {
        AaSysComUserDeregister(m_cpId);
        throw InitFailedException(reason);
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_radId, "Service initialized ( 0x0%x )", m_id);
}

unsigned int Service::Run()
{
    wakeUpIfEndRequested();
    if (const ReceivedMessage message(hwapiMsgQueueReceive(AA_WAIT_FOREVER)); message) {
        try {
            dispatch(message.get());
        } catch (const RuntimeException& reason) {
            throw RuntimeException(reason);
        } catch (const std::exception&) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Message handling failed 0x%4x",
                           AaSysComMsgGetId(message.get()));
            throw RuntimeException("std::exception in Run()", __FILE__, __LINE__);
        }
    }
    return std::atomic_ref<unsigned int>(m_terminate).load() == 0 ? 1 : 0;
}

void Service::dispatch(void* message)
{
    const TAaSysComMsgId id = AaSysComMsgGetId(message);
    const auto found = m_delegates.find(id);
    if (found == m_delegates.end()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId,
                       "Unknown message received: id=0x%04X receiver=0x%08X sender=0x%08X", id,
                       AaSysComMsgGetReceiver(message), AaSysComMsgGetSender(message));
        return;
    }
    SetServiceStateRad(EServiceState_Handling);
    found->second->HandleMsg(message);
}

} // namespace vel::hwapi::common
