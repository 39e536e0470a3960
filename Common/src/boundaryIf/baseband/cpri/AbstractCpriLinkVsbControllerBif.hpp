// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkVsbControllerBif.hpp
/// Makes regions of vendor specific bytes on CPRI links, and tells what passes through all of them.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbEgressRegionBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbIngressRegionBif.hpp"
#include "boundaryIf/baseband/cpri/VsbCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What a driver of CPRI links offers for the vendor specific bytes (VSB) of the control channel.
class AbstractCpriLinkVsbControllerBif : public AbstractBif<VsbCallbackParam> {
public:
    /// Takes the events of regions; derived from by clients.
    class AbstractCpriVsbCallback : public CallbackFunctor {};

    /// A hyperframe has brought an enabled ingress region its first bytes, or others than the one before.
    [[gnu::init_priority(101)]] inline static const std::string CPRI_VSB_BYTES_RECEIVED_EVENT_NAME =
        "CpriVsbBytesReceivedEvent";
    /// The bytes that were written to an enabled egress region have left with a hyperframe for the first time.
    [[gnu::init_priority(101)]] inline static const std::string CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME =
        "CpriVsbBytesTransmittedEvent";

    /// Makes a region, disabled and without control words. It is the caller's, who deletes it before the controller.
    /// @return null when the link can have no more
    virtual AbstractCpriLinkVsbIngressRegionBif* createIngressRegion(const CpriLink& link) = 0;
    /// Same, for bytes to be transmitted.
    virtual AbstractCpriLinkVsbEgressRegionBif* createEgressRegion(const CpriLink& link) = 0;

    /// Registers who is told of received bytes; the callback stays the caller's and must outlive the interface.
    void setCpriVsbBytesReceivedCallback(AbstractCpriVsbCallback* callback)
    {
        addCallback(CPRI_VSB_BYTES_RECEIVED_EVENT_NAME, callback);
    }
    /// Registers who is told of transmitted bytes; the callback stays the caller's and must outlive the interface.
    void setCpriVsbBytesTransmittedCallback(AbstractCpriVsbCallback* callback)
    {
        addCallback(CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkVsbControllerBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractCpriLinkVsbControllerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #CPRI_VSB_BYTES_RECEIVED_EVENT_NAME.
    virtual void callCpriVsbBytesReceivedCallback(VsbCallbackParam& parameter)
    {
        callCallback(CPRI_VSB_BYTES_RECEIVED_EVENT_NAME, parameter);
    }
    /// Raises #CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME.
    virtual void callCpriVsbBytesTransmittedCallback(VsbCallbackParam& parameter)
    {
        callCallback(CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
