// SPDX-License-Identifier: MIT
#include "SfpS.hpp"

#include "Answer.hpp"
#include "OwnUnit.hpp"

#include <cstring>
#include <vector>

namespace dorn::examples {
namespace {

constexpr std::chrono::milliseconds stepPeriod{100};

} // namespace

SfpS::SfpS()
    : Service("SfpS", sfpServiceCpid, ERadHwapi_SFP, ERadHwapiState_SfpServiceState),
      m_client(ERadHwapi_SFP),
      m_sfp(EventThread::worker()),
      m_timer(ERadHwapi_SFP)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n");
}

unsigned int SfpS::PreStartup()
{
    SetVerbose(GetArgumentParser().ReadArgument("v") == "arg on" ? 1 : 0);
    return 1;
}

void SfpS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&SfpS::HandleTimeOut);
    AddMsgHandler(&SfpS::HandleShow);
    AddMsgHandler(&SfpS::HandlePlug);
    m_sfp.setSfpCallback(&m_client);
    m_sfp.initialize();
}

void SfpS::HandleTimeOut(StepTimeOutMsg timeOut)
{
    if (m_timer.takes(timeOut) && m_sfp.step()) {
        m_timer.start(stepPeriod);
    }
}

void SfpS::HandleShow(SfpShowReqMsg request)
{
    std::vector<std::uint32_t> ids;
    m_sfp.getSfpModuleIds(ids);
    std::vector<SSfpCage> cages;
    for (const std::uint32_t id : ids) {
        const std::uint32_t link = m_sfp.getPhysicalLinkId(id);
        const SfpClient::Module known = m_client.moduleOf(link);
        cages.push_back({id, link, m_sfp.cages().at(id).module, known.isDetected ? 1U : 0U, known.eventCount});
    }
    const std::size_t size = cages.size() * sizeof(SSfpCage);
    answerTo<SfpShowRespMsg>(request, *this, size, [&](SfpShowRespMsg answer) {
        answer->cageCount = static_cast<std::uint32_t>(cages.size());
        std::memcpy(answer.GetPayload() + 1, cages.data(), size);
    });
}

void SfpS::HandlePlug(SfpPlugReqMsg request)
{
    answerTo<SfpPlugRespMsg>(request, *this, [&](SfpPlugRespMsg answer) {
        answer->status = setPlugged(request->cage, request->isPlugged != 0);
    });
}

ESfpPlugStatus SfpS::setPlugged(std::uint32_t cage, bool isPlugged)
{
    if (cage >= SfpCages::count) {
        return ESfpPlugStatus_NoSuchCage;
    }
    if (!(isPlugged ? m_sfp.plug(cage) : m_sfp.pull(cage))) {
        return ESfpPlugStatus_SoAlready;
    }
    if (isPlugged) {
        m_timer.start(stepPeriod);
    }
    return ESfpPlugStatus_Done;
}

} // namespace dorn::examples
