// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaConfigRad.h"
#include "ServiceState.hpp"
#include "hwapiMsgQueue.h"

#include <atomic>
#include <utility>

namespace vel::hwapi::common {

Service* Service::m_impl = nullptr;
AaSemReMutex* Service::m_wfctMapSem = nullptr;

Service::Service(std::string name, unsigned short id, ERadHwapi radId, ERadHwapiState stateRadId)
    : m_useCommonServiceState(1),
      m_uRadStateId(stateRadId),
      m_name(std::move(name)),
      m_id(id),
      m_radId(radId),
      m_cpId(0),
      m_verbose(0),
      m_terminate(0)
{
    m_impl = this;
    m_wfctMapSem = AaSemReMutexCreate();
}

Service::~Service()
{
    Service::SetServiceStateRad(EServiceState_Ended);
    while (!m_delegates.empty()) {
        delete m_delegates.extract(m_delegates.begin()).mapped();
    }
    if (m_impl == this) {
        leaveAllTags();
    }
    if (m_wfctMapSem) {
        AaSemReMutexDestroy(&m_wfctMapSem);
    }
    Service::Exit();
    if (m_impl == this) {
        m_impl = nullptr;
    }
}

void Service::SetServiceStateRad(unsigned int state)
{
    if ((m_useCommonServiceState != 0 && state <= EServiceState_Failed) || state >= EServiceState_FirstOwn) {
        AaConfigRadSetValue(m_uRadStateId, state);
    }
}

unsigned int Service::GetServiceStateRad()
{
    return AaConfigRadGetValue(m_uRadStateId);
}

unsigned int Service::PreStartup()
{
    return 1;
}

void Service::Init() {}

void Service::Exit()
{
    hwapiMsgQueueDestroy();
    AaSysComUserDeregister(m_id);
}

bool Service::HandleRedundancyStateCommand(ERedundancyCommand /*command*/, ERedundancyState* state)
{
    *state = ERedundancyState_Ready;
    return true;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): services override this signature
void Service::HandleConfigTagChange(std::string /*tag*/, unsigned int /*value*/) {}

void Service::Terminate()
{
    // Called from other threads and from signal handlers.
    static_assert(std::atomic_ref<unsigned int>::is_always_lock_free);
    std::atomic_ref<unsigned int>(m_terminate).store(1);
}

TAaSysComSicad Service::GetSicad()
{
    constexpr TAaSysComNid defaultNid = 0x0F01;
    const TAaSysComNid nid = AaSysComGetOwnNid() & 0xFFFFU;
    return AaSysComSicadGet(m_cpId, nid != 0 ? nid : defaultNid);
}

} // namespace vel::hwapi::common
