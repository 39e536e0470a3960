// SPDX-License-Identifier: MIT
#include "LinkClient.hpp"

#include "AaSysLog.h"
#include "LinkNames.hpp"

#include <bit>

namespace dorn::examples {

LinkClient::LinkClient(ERadHwapi feature)
    : m_feature(feature),
      m_obsaiRx([this](const ObsaiSync& event) { onObsaiRx(event); }),
      m_obsaiTx([this](const ObsaiSync& event) { onObsaiTx(event); }),
      m_pi([this](const ObsaiSync& event) { onPi(event); }),
      m_cpriRx([this](const CpriSync& event) { onCpriRx(event); }),
      m_masterFrame([this](const CpriSync& event) { onMasterFrame(event); }),
      m_los(conditionOf(ELinkCondition_Los)),
      m_lof(conditionOf(ELinkCondition_Lof)),
      m_remoteVersion([this](const RemoteNode& event) { onRemoteVersion(event); }),
      m_remotePointer([this](const RemoteNode& event) { onRemotePointer(event); }),
      m_remoteReset(remoteConditionOf(ELinkCondition_RemoteReset)),
      m_remoteLos(remoteConditionOf(ELinkCondition_RemoteLos)),
      m_remoteRai(remoteConditionOf(ELinkCondition_RemoteRai)),
      m_remoteSdi(remoteConditionOf(ELinkCondition_RemoteSdi)),
      m_remoteLof(remoteConditionOf(ELinkCondition_RemoteLof)),
      m_vsbReceived([this](const Vsb& event) { onVsb(event, "received"); }),
      m_vsbTransmitted([this](const Vsb& event) { onVsb(event, "transmitted"); })
{
}

LinkClient::MaintenanceCallback LinkClient::conditionOf(ELinkCondition condition)
{
    return MaintenanceCallback(
        [this, condition](const Maintenance& event) { onCondition(*event.getLink(), condition, event.getActive()); });
}

LinkClient::RemoteNodeCallback LinkClient::remoteConditionOf(ELinkCondition condition)
{
    return RemoteNodeCallback(
        [this, condition](const RemoteNode& event) { onCondition(*event.getLink(), condition, event.getActive()); });
}

void LinkClient::listenTo(vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLinkSynchronizerBif& bif)
{
    bif.setRxLinkSynchronizationCallback(&m_obsaiRx);
    bif.setTxLinkSynchronizationCallback(&m_obsaiTx);
    bif.setPiMeasurementResultCallback(&m_pi);
}

void LinkClient::listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkSynchronizerBif& bif)
{
    bif.setRxLinkSynchronizationCallback(&m_cpriRx);
    bif.setMasterFrameMeasCallback(&m_masterFrame);
}

void LinkClient::listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkMaintenanceBif& bif)
{
    bif.setLosEventCallback(&m_los);
    bif.setLofEventCallback(&m_lof);
}

void LinkClient::listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkRemoteNodeBif& bif)
{
    bif.setProtocolVersionChangeEventCallback(&m_remoteVersion);
    bif.setEthernetSubchannelPointerChangeEventCallback(&m_remotePointer);
    bif.setResetEventCallback(&m_remoteReset);
    bif.setLosEventCallback(&m_remoteLos);
    bif.setRaiEventCallback(&m_remoteRai);
    bif.setSdiEventCallback(&m_remoteSdi);
    bif.setLofEventCallback(&m_remoteLof);
}

void LinkClient::listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbControllerBif& bif)
{
    bif.setCpriVsbBytesReceivedCallback(&m_vsbReceived);
    bif.setCpriVsbBytesTransmittedCallback(&m_vsbTransmitted);
}

void LinkClient::onObsaiRx(const ObsaiSync& event)
{
    const std::uint32_t rx = event.getRxLinkSynchronizationState();
    note(*event.getLink(), std::string("receives: ") + nameIn(obsaiRxStateNames, rx), [&](State& state) {
        state.rx = rx;
        state.delay = static_cast<std::int32_t>(event.getPiMeasurementResult());
    });
}

void LinkClient::onObsaiTx(const ObsaiSync& event)
{
    const std::uint32_t tx = event.getTxLinkSynchronizationState();
    note(*event.getLink(), std::string("transmits: ") + nameIn(obsaiTxStateNames, tx),
         [tx](State& state) { state.tx = tx; });
}

void LinkClient::onPi(const ObsaiSync& event)
{
    note(*event.getLink(), "pi: " + std::to_string(event.getPiMeasurementResult()));
}

void LinkClient::onCpriRx(const CpriSync& event)
{
    const std::uint32_t rx = event.getRxLinkSynchronizationState();
    note(*event.getLink(), std::string("receives: ") + nameIn(cpriRxStateNames, rx), [&](State& state) {
        state.rx = rx;
        state.delay = event.getMasterFrameMeasResult();
    });
}

void LinkClient::onMasterFrame(const CpriSync& event)
{
    note(*event.getLink(), "master frame: " + std::to_string(event.getMasterFrameMeasResult()));
}

void LinkClient::onCondition(const AbstractBasebandLink& link, ELinkCondition condition, bool isActive)
{
    const auto bit = static_cast<std::size_t>(std::countr_zero(static_cast<std::uint32_t>(condition)));
    note(link, linkConditionNames[bit] + std::string(isActive ? " begins" : " ends"), [&](State& state) {
        state.conditions = isActive ? state.conditions | condition : state.conditions & ~condition;
    });
}

void LinkClient::onRemoteVersion(const RemoteNode& event)
{
    note(*event.getLink(), "remote protocol version: " + std::to_string(event.getProtocolVersion()));
}

void LinkClient::onRemotePointer(const RemoteNode& event)
{
    note(*event.getLink(), "remote pointer: " + std::to_string(event.getEthernetSubchannelPointer()));
}

void LinkClient::onVsb(const Vsb& event, const char* what)
{
    vel::hwapi::common::bif::baseband::cpri::VsbDataBytes bytes;
    event.getDataBytes(bytes);
    note(event.getLink(),
         "region " + std::to_string(event.getRegionId()) + ": " + std::to_string(bytes.size()) + " bytes " + what);
}

/// Keeps what an event has said, and logs it: whoever reads the log finds it kept.
void LinkClient::note(const AbstractBasebandLink& link, const std::string& text,
                      const std::function<void(State&)>& change)
{
    const std::string name = link.getLinkHumanName();
    {
        const std::lock_guard lock(m_mutex);
        State& state = m_states[name];
        change(state);
        ++state.eventCount;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, m_feature, "Link %s %s", name.c_str(), text.c_str());
}

LinkClient::State LinkClient::stateOf(const std::string& name) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_states.find(name);
    return found == m_states.end() ? State{} : found->second;
}

} // namespace dorn::examples
