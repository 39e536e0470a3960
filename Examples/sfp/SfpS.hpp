// SPDX-License-Identifier: MIT
/// @file SfpS.hpp
/// The board's SFP cages.
#pragma once

#include "EventThread.hpp"
#include "Service.hpp"
#include "SfpClient.hpp"
#include "SfpMessages.hpp"
#include "SimulatedSfp.hpp"
#include "StepTimer.hpp"

namespace dorn::examples {

/// Watches the SFP cages through their boundary interface, asynchronously, and tells what it has been told; see
/// SfpMessages.hpp. The hardware is simulated: messages stand for the hands that plug and pull.
class SfpS : public vel::hwapi::common::Service {
public:
    SfpS();

private:
    unsigned int PreStartup() override;
    void Init() override;
    void HandleTimeOut(StepTimeOutMsg timeOut);
    void HandleShow(SfpShowReqMsg request);
    void HandlePlug(SfpPlugReqMsg request);
    ESfpPlugStatus setPlugged(std::uint32_t cage, bool isPlugged);

    SfpClient m_client;
    SimulatedSfp m_sfp;
    StepTimer m_timer;
    EventThread m_events; ///< the last one: its end comes first
};

} // namespace dorn::examples
