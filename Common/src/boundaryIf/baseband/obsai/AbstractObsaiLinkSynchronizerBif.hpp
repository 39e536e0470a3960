// SPDX-License-Identifier: MIT
/// @file AbstractObsaiLinkSynchronizerBif.hpp
/// Brings OBSAI links up and down and tells how their synchronisation goes.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/obsai/LinkSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::obsai {

/// What a driver of OBSAI links offers for bringing them up.
class AbstractObsaiLinkSynchronizerBif : public AbstractBif<LinkSyncCallbackParam> {
public:
    /// Takes the events of synchronizers; derived from by clients.
    class AbstractLinkSyncCallback : public CallbackFunctor {};

    /// The receiver's state has changed.
    [[gnu::init_priority(101)]] inline static const std::string RX_LINK_SYNCHRONIZATION_EVENT_NAME =
        "RxLinkSynchronizationEvent";
    /// The transmitter's state has changed.
    [[gnu::init_priority(101)]] inline static const std::string TX_LINK_SYNCHRONIZATION_EVENT_NAME =
        "TxLinkSynchronizationEvent";
    /// A measurement of pi has ended.
    [[gnu::init_priority(101)]] inline static const std::string PI_MEASUREMENT_RESULT_EVENT_NAME =
        "PiMeasurementResultEvent";

    /// @{
    /// Whether the link synchronises by itself, and in which role.
    virtual void setAutoSynchronizationMode(const AbstractObsaiLink& link, ELinkAutoSynchronizationMode mode) = 0;
    virtual ELinkAutoSynchronizationMode getAutoSynchronizationMode(const AbstractObsaiLink& link) = 0;
    /// @}

    /// @{
    /// Whether the driver brings the link up and keeps it up.
    virtual void enableLink(const AbstractObsaiLink& link) = 0;
    virtual void disableLink(const AbstractObsaiLink& link) = 0;
    virtual bool isLinkEnabled(const AbstractObsaiLink& link) = 0;
    /// @}

    /// How far the receiver has come.
    virtual ERxLinkState getRxLinkSynchronizationState(const AbstractObsaiLink& link) = 0;
    /// What the transmitter sends.
    virtual ETxLinkState getTxLinkSynchronizationState(const AbstractObsaiLink& link) = 0;
    /// @{
    /// Has the driver take this state by hand, for links that do not synchronise by themselves.
    virtual void setRxLinkSynchronizationState(const AbstractObsaiLink& link, ERxLinkState state) = 0;
    virtual void setTxLinkSynchronizationState(const AbstractObsaiLink& link, ETxLinkState state) = 0;
    /// @}

    /// Registers who is told of the receiver's states; the callback stays the caller's and must outlive the interface.
    void setRxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    /// Registers who is told of the transmitter's states; the callback stays the caller's and must outlive the
    /// interface.
    void setTxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(TX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    /// Registers who is told of measurements of pi; the callback stays the caller's and must outlive the interface.
    void setPiMeasurementResultCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(PI_MEASUREMENT_RESULT_EVENT_NAME, callback);
    }

protected:
    AbstractObsaiLinkSynchronizerBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractObsaiLinkSynchronizerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #RX_LINK_SYNCHRONIZATION_EVENT_NAME.
    virtual void callRxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    /// Raises #TX_LINK_SYNCHRONIZATION_EVENT_NAME.
    virtual void callTxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(TX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    /// Raises #PI_MEASUREMENT_RESULT_EVENT_NAME.
    virtual void callPiMeasurementResultCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(PI_MEASUREMENT_RESULT_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::obsai
