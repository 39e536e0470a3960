// SPDX-License-Identifier: MIT
/// @file LinkClient.hpp
/// Who wants to know how the baseband links are.
#pragma once

#include "CallbackTo.hpp"
#include "LinkMessages.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkMaintenanceBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkRemoteNodeBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkSynchronizerBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbControllerBif.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLinkSynchronizerBif.hpp"
#include "rad/ERadHwapi.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace dorn::examples {

/// Logs the events of all links and keeps what they have said. Events come on one thread, questions on another.
class LinkClient {
public:
    /// What is known of a link.
    struct State {
        std::uint32_t rx = 0; ///< its standard's ERxLinkState
        std::uint32_t tx = 0;
        std::uint32_t conditions = 0; ///< ELinkCondition
        std::int32_t delay = 0;
        std::uint32_t eventCount = 0;
    };

    /// @param feature feature id of the log lines
    explicit LinkClient(ERadHwapi feature);
    LinkClient(const LinkClient&) = delete;
    LinkClient& operator=(const LinkClient&) = delete;

    /// Takes all events of an interface. This object lives longer than it.
    void listenTo(vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLinkSynchronizerBif& bif);
    void listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkSynchronizerBif& bif);
    void listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkMaintenanceBif& bif);
    void listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkRemoteNodeBif& bif);
    void listenTo(vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbControllerBif& bif);

    /// @param name human name of the link
    State stateOf(const std::string& name) const;

private:
    using AbstractBasebandLink = vel::hwapi::common::bif::baseband::AbstractBasebandLink;
    using ObsaiSync = vel::hwapi::common::bif::baseband::obsai::LinkSyncCallbackParam;
    using CpriSync = vel::hwapi::common::bif::baseband::cpri::LinkSyncCallbackParam;
    using Maintenance = vel::hwapi::common::bif::baseband::cpri::LinkMaintenanceCallbackParam;
    using RemoteNode = vel::hwapi::common::bif::baseband::cpri::LinkRemoteNodeCallbackParam;
    using Vsb = vel::hwapi::common::bif::baseband::cpri::VsbCallbackParam;
    using ObsaiSyncCallback =
        CallbackTo<vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLinkSynchronizerBif::AbstractLinkSyncCallback,
                   ObsaiSync>;
    using CpriSyncCallback =
        CallbackTo<vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkSynchronizerBif::AbstractLinkSyncCallback,
                   CpriSync>;
    using MaintenanceCallback = CallbackTo<
        vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkMaintenanceBif::AbstractLinkMaintenanceCallback,
        Maintenance>;
    using RemoteNodeCallback = CallbackTo<
        vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkRemoteNodeBif::AbstractLinkRemoteNodeCallback,
        RemoteNode>;
    using VsbCallback =
        CallbackTo<vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbControllerBif::AbstractCpriVsbCallback,
                   Vsb>;

    MaintenanceCallback conditionOf(ELinkCondition condition);
    RemoteNodeCallback remoteConditionOf(ELinkCondition condition);
    void onObsaiRx(const ObsaiSync& event);
    void onObsaiTx(const ObsaiSync& event);
    void onPi(const ObsaiSync& event);
    void onCpriRx(const CpriSync& event);
    void onMasterFrame(const CpriSync& event);
    void onCondition(const AbstractBasebandLink& link, ELinkCondition condition, bool isActive);
    void onRemoteVersion(const RemoteNode& event);
    void onRemotePointer(const RemoteNode& event);
    void onVsb(const Vsb& event, const char* what);
    void note(
        const AbstractBasebandLink& link, const std::string& text,
        const std::function<void(State&)>& change = [](State&) {});

    const ERadHwapi m_feature;
    mutable std::mutex m_mutex;
    std::map<std::string, State> m_states; ///< by the link's name

    ObsaiSyncCallback m_obsaiRx;
    ObsaiSyncCallback m_obsaiTx;
    ObsaiSyncCallback m_pi;
    CpriSyncCallback m_cpriRx;
    CpriSyncCallback m_masterFrame;
    MaintenanceCallback m_los;
    MaintenanceCallback m_lof;
    RemoteNodeCallback m_remoteVersion;
    RemoteNodeCallback m_remotePointer;
    RemoteNodeCallback m_remoteReset;
    RemoteNodeCallback m_remoteLos;
    RemoteNodeCallback m_remoteRai;
    RemoteNodeCallback m_remoteSdi;
    RemoteNodeCallback m_remoteLof;
    VsbCallback m_vsbReceived;
    VsbCallback m_vsbTransmitted;
};

} // namespace dorn::examples
