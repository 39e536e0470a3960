// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkSynchronizerBif.hpp
/// Brings CPRI links up and down and tells how their synchronisation goes.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/LinkSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What a driver of CPRI links offers for bringing them up.
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

    /// @{
    /// Whether the driver brings the link up and keeps it up.
    virtual void enableLink(const CpriLink& link) = 0;
    virtual void disableLink(const CpriLink& link) = 0;
    virtual bool isLinkEnabled(const CpriLink& link) = 0;
    /// @}

    /// The latest measurement of where the master frame begins, in the driver's unit.
    virtual std::int32_t getMasterFrameMeasResult(const CpriLink& link) = 0;
    /// How far the receiver has come.
    virtual ERxLinkState getRxLinkSynchronizationState(const CpriLink& link) = 0;

    /// Registers who is told of the receiver's states; the callback stays the caller's and must outlive the interface.
    void setRxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    /// Registers who is told of measurements of the master frame; the callback stays the caller's and must outlive the
    /// interface.
    void setMasterFrameMeasCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(MASTER_FRAME_MEASUREMENT_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkSynchronizerBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractCpriLinkSynchronizerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #RX_LINK_SYNCHRONIZATION_EVENT_NAME.
    virtual void callRxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    /// Raises #MASTER_FRAME_MEASUREMENT_EVENT_NAME.
    virtual void callMasterFrameMeasCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(MASTER_FRAME_MEASUREMENT_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
