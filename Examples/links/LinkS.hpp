// SPDX-License-Identifier: MIT
/// @file LinkS.hpp
/// The board's baseband links.
#pragma once

#include "EventThread.hpp"
#include "LinkClient.hpp"
#include "LinkMessages.hpp"
#include "Service.hpp"
#include "SimulatedCpriMaintenance.hpp"
#include "SimulatedCpriRemoteNode.hpp"
#include "SimulatedCpriSynchronizer.hpp"
#include "SimulatedCpriVsb.hpp"
#include "SimulatedObsaiSynchronizer.hpp"
#include "StepTimer.hpp"

#include <memory>
#include <vector>

namespace dorn::examples {

/// Brings the baseband links up through their boundary interfaces, greets the far ends of the CPRI links in vendor
/// specific bytes, and tells what it has been told; see LinkMessages.hpp. The hardware is simulated: messages stand for
/// what happens to the fibres. While no link changes its state the service sleeps.
class LinkS : public vel::hwapi::common::Service {
public:
    LinkS();

private:
    unsigned int PreStartup() override;
    void Init() override;
    void HandleTimeOut(StepTimeOutMsg timeOut);
    void HandleShow(LinkShowReqMsg request);
    void HandleBreak(LinkBreakReqMsg request);

    void listen();
    void bringUp();
    void greet(const vel::hwapi::common::bif::baseband::cpri::CpriLink& link);
    void step();
    std::vector<SLink> links();
    ELinkBreakStatus setBroken(const LinkName& name, std::uint32_t parts);

    LinkClient m_client;
    CpriLinks m_cpriLinks;
    ObsaiLinks m_obsaiLinks;
    SimulatedCpriSynchronizer m_cpri;
    SimulatedCpriMaintenance m_maintenance;
    SimulatedCpriRemoteNode m_remoteNode;
    SimulatedCpriVsb m_vsb;
    SimulatedObsaiSynchronizer m_obsai;
    /// Where the greetings go, and where their echoes come; gone before their controller.
    std::vector<std::unique_ptr<vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbRegionBif>> m_regions;
    StepTimer m_timer;
    EventThread m_events; ///< the last one: its end comes first
};

} // namespace dorn::examples
