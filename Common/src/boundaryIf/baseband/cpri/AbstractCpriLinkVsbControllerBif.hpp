// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkVsbControllerBif.hpp
/// Makes regions of vendor specific bytes on CPRI links, and tells what passes through all of them.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbEgressRegionBif.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbIngressRegionBif.hpp"
#include "boundaryIf/baseband/cpri/VsbCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

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

    void setCpriVsbBytesReceivedCallback(AbstractCpriVsbCallback* callback)
    {
        addCallback(CPRI_VSB_BYTES_RECEIVED_EVENT_NAME, callback);
    }
    void setCpriVsbBytesTransmittedCallback(AbstractCpriVsbCallback* callback)
    {
        addCallback(CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkVsbControllerBif() = default;
    explicit AbstractCpriLinkVsbControllerBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callCpriVsbBytesReceivedCallback(VsbCallbackParam& parameter)
    {
        callCallback(CPRI_VSB_BYTES_RECEIVED_EVENT_NAME, parameter);
    }
    virtual void callCpriVsbBytesTransmittedCallback(VsbCallbackParam& parameter)
    {
        callCallback(CPRI_VSB_BYTES_TRANSMITTED_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
