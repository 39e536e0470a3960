// SPDX-License-Identifier: MIT
#include "LinkS.hpp"

#include "Answer.hpp"
#include "OwnUnit.hpp"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband;
using cpri::CpriLink;

namespace {

/// Hundreds of times what hardware needs, so that people can look on.
constexpr std::chrono::milliseconds stepPeriod{100};

constexpr std::string_view greeting = "Dorn board";

LinkName nameOf(const AbstractBasebandLink& link)
{
    LinkName name{};
    const std::string text = link.getLinkHumanName();
    std::copy_n(text.begin(), std::min(text.size(), name.size() - 1), name.begin());
    return name;
}

/// What a client knows of a link.
SLink recordOf(const AbstractBasebandLink& link, std::uint32_t brokenParts, const LinkClient::State& state)
{
    return {nameOf(link),     link.getLinkType(), static_cast<std::uint32_t>(link.getLinkUniqueIdentifier()),
            brokenParts,      state.rx,           state.tx,
            state.conditions, state.delay,        state.eventCount};
}

/// Sets what is broken of the link of this name, if there is one.
/// @return ELinkBreakStatus_NoSuchLink when there is none.
template <class Links>
ELinkBreakStatus setBrokenAmong(Links& links, const LinkName& name, std::uint32_t parts)
{
    for (auto& [link, model] : links.all()) {
        if (nameOf(link) != name) {
            continue;
        }
        if (model.brokenParts() == parts) {
            return ELinkBreakStatus_SoAlready;
        }
        model.setBrokenParts(parts);
        return ELinkBreakStatus_Done;
    }
    return ELinkBreakStatus_NoSuchLink;
}

} // namespace

LinkS::LinkS()
    : Service("LinkS", linkServiceCpid, ERadHwapi_CPR, ERadHwapiState_CpriState),
      m_client(ERadHwapi_CPR),
      m_cpri(m_cpriLinks, EventThread::worker()),
      m_maintenance(m_cpriLinks, EventThread::worker()),
      m_remoteNode(m_cpriLinks, EventThread::worker()),
      m_vsb(m_cpriLinks, EventThread::worker()),
      m_obsai(m_obsaiLinks, EventThread::worker()),
      m_timer(ERadHwapi_CPR)
{
    GetArgumentParser().SetArgumentInfo("-v Switch this service's prints on\n");
}

unsigned int LinkS::PreStartup()
{
    SetVerbose(GetArgumentParser().ReadArgument("v") == "arg on" ? 1 : 0);
    return 1;
}

void LinkS::Init()
{
    logOwnUnit(GetRadId());
    AddMsgHandler(&LinkS::HandleTimeOut);
    AddMsgHandler(&LinkS::HandleShow);
    AddMsgHandler(&LinkS::HandleBreak);
    listen();
    bringUp();
}

void LinkS::listen()
{
    m_client.listenTo(m_cpri);
    m_client.listenTo(m_maintenance);
    m_client.listenTo(m_remoteNode);
    m_client.listenTo(m_vsb);
    m_client.listenTo(m_obsai);
    m_cpri.initialize(); // and the others with it: they share a worker
}

void LinkS::bringUp()
{
    for (const auto& [link, model] : m_cpriLinks.all()) {
        m_cpri.enableLink(link);
        greet(link);
    }
    for (const auto& [link, model] : m_obsaiLinks.all()) {
        m_obsai.setAutoSynchronizationMode(link, obsai::ELinkAutoSynchronizationMode_Master);
        m_obsai.enableLink(link);
    }
    m_timer.start(stepPeriod);
}

/// Has the link take a greeting along, and looks out for what comes back.
void LinkS::greet(const CpriLink& link)
{
    const cpri::VsbControlWords controlWords(cpri::VsbControlWords::FIRST_VENDOR_SPECIFIC_SUBCHANNEL, 1);
    cpri::AbstractCpriLinkVsbIngressRegionBif* const ingress = m_vsb.createIngressRegion(link);
    m_regions.emplace_back(ingress);
    ingress->setControlWords(controlWords);
    ingress->enableRegion();
    cpri::AbstractCpriLinkVsbEgressRegionBif* const egress = m_vsb.createEgressRegion(link);
    m_regions.emplace_back(egress);
    egress->setControlWords(controlWords);
    egress->enableRegion();
    cpri::VsbDataBytes bytes(greeting.begin(), greeting.end());
    bytes.resize(controlWords.getSize(CpriLinks::rate));
    egress->writeBytes(bytes);
}

void LinkS::HandleTimeOut(StepTimeOutMsg timeOut)
{
    if (m_timer.takes(timeOut)) {
        step();
    }
}

void LinkS::step()
{
    const bool hasCpriMoved = m_cpriLinks.step();
    const bool hasObsaiMoved = m_obsaiLinks.step();
    m_cpri.tell();
    m_maintenance.tell();
    m_remoteNode.tell();
    m_vsb.tell();
    m_obsai.tell();
    if (hasCpriMoved || hasObsaiMoved) {
        m_timer.start(stepPeriod);
    }
}

std::vector<SLink> LinkS::links()
{
    std::vector<SLink> records;
    for (const auto& [link, model] : m_cpriLinks.all()) {
        records.push_back(recordOf(link, model.brokenParts(), m_client.stateOf(link.getLinkHumanName())));
    }
    for (const auto& [link, model] : m_obsaiLinks.all()) {
        records.push_back(recordOf(link, model.brokenParts(), m_client.stateOf(link.getLinkHumanName())));
    }
    return records;
}

void LinkS::HandleShow(LinkShowReqMsg request)
{
    const std::vector<SLink> records = links();
    const std::size_t size = records.size() * sizeof(SLink);
    answerTo<LinkShowRespMsg>(request, *this, size, [&](LinkShowRespMsg answer) {
        answer->linkCount = static_cast<std::uint32_t>(records.size());
        std::memcpy(answer.GetPayload() + 1, records.data(), size);
    });
}

void LinkS::HandleBreak(LinkBreakReqMsg request)
{
    answerTo<LinkBreakRespMsg>(request, *this, [&](LinkBreakRespMsg answer) {
        answer->status = setBroken(request->name, request->brokenParts);
    });
}

ELinkBreakStatus LinkS::setBroken(const LinkName& name, std::uint32_t parts)
{
    if ((parts & ~allLinkParts) != 0) {
        return ELinkBreakStatus_BadParts;
    }
    ELinkBreakStatus status = setBrokenAmong(m_cpriLinks, name, parts);
    if (status == ELinkBreakStatus_NoSuchLink) {
        status = setBrokenAmong(m_obsaiLinks, name, parts);
    }
    if (status == ELinkBreakStatus_Done) {
        m_timer.start(stepPeriod);
    }
    return status;
}

} // namespace dorn::examples
