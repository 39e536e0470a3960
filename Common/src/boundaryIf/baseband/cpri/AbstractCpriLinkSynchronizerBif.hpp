// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkSynchronizerBif.hpp
/// Brings CPRI links up and down and tells how their synchronisation goes.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/LinkSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

class AbstractCpriLinkSynchronizerBif : public AbstractBif<LinkSyncCallbackParam> {
public:
    /// Takes the events of synchronizers; derived from by clients.
    class AbstractLinkSyncCallback : public CallbackFunctor {};

    /// The receiver's state has changed.
    [[gnu::init_priority(101)]] inline static const std::string RX_LINK_SYNCHRONIZATION_EVENT_NAME =
        "CpriRxLinkSynchronizationEvent";
    /// A measurement of the master frame has ended.
    [[gnu::init_priority(101)]] inline static const std::string MASTER_FRAME_MEASUREMENT_EVENT_NAME =
        "CpriMasterFrameMeasurementEvent";

    virtual void enableLink(const CpriLink& link) = 0;
    virtual void disableLink(const CpriLink& link) = 0;
    virtual bool isLinkEnabled(const CpriLink& link) = 0;
    virtual std::int32_t getMasterFrameMeasResult(const CpriLink& link) = 0;
    virtual ERxLinkState getRxLinkSynchronizationState(const CpriLink& link) = 0;

    void setRxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    void setMasterFrameMeasCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(MASTER_FRAME_MEASUREMENT_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkSynchronizerBif() = default;
    explicit AbstractCpriLinkSynchronizerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callRxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    virtual void callMasterFrameMeasCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(MASTER_FRAME_MEASUREMENT_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
