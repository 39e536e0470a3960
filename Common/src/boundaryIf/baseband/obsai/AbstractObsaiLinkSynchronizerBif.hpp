// SPDX-License-Identifier: MIT
/// @file AbstractObsaiLinkSynchronizerBif.hpp
/// Brings OBSAI links up and down and tells how their synchronisation goes.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/obsai/LinkSyncCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::obsai {

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

    virtual void setAutoSynchronizationMode(const AbstractObsaiLink& link, ELinkAutoSynchronizationMode mode) = 0;
    virtual ELinkAutoSynchronizationMode getAutoSynchronizationMode(const AbstractObsaiLink& link) = 0;
    virtual void enableLink(const AbstractObsaiLink& link) = 0;
    virtual void disableLink(const AbstractObsaiLink& link) = 0;
    virtual bool isLinkEnabled(const AbstractObsaiLink& link) = 0;
    virtual ERxLinkState getRxLinkSynchronizationState(const AbstractObsaiLink& link) = 0;
    virtual ETxLinkState getTxLinkSynchronizationState(const AbstractObsaiLink& link) = 0;
    virtual void setRxLinkSynchronizationState(const AbstractObsaiLink& link, ERxLinkState state) = 0;
    virtual void setTxLinkSynchronizationState(const AbstractObsaiLink& link, ETxLinkState state) = 0;

    void setRxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    void setTxLinkSynchronizationCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(TX_LINK_SYNCHRONIZATION_EVENT_NAME, callback);
    }
    void setPiMeasurementResultCallback(AbstractLinkSyncCallback* callback)
    {
        addCallback(PI_MEASUREMENT_RESULT_EVENT_NAME, callback);
    }

protected:
    AbstractObsaiLinkSynchronizerBif() = default;
    explicit AbstractObsaiLinkSynchronizerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callRxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(RX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    virtual void callTxLinkSynchronizationCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(TX_LINK_SYNCHRONIZATION_EVENT_NAME, parameter);
    }
    virtual void callPiMeasurementResultCallback(LinkSyncCallbackParam& parameter)
    {
        callCallback(PI_MEASUREMENT_RESULT_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::obsai
