// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkMaintenanceBif.hpp
/// Layer 1 maintenance of CPRI links: sends the signals of control byte Z.130.0 to the other end, and tells what this
/// end has lost.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/LinkMaintenanceCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

class AbstractCpriLinkMaintenanceBif : public AbstractBif<LinkMaintenanceCallbackParam> {
public:
    /// Takes maintenance events; derived from by clients.
    class AbstractLinkMaintenanceCallback : public CallbackFunctor {};

    /// Loss of signal has come or gone.
    [[gnu::init_priority(101)]] inline static const std::string LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME =
        "CpriLinkMaintenanceLosEvent";
    /// Loss of frame has come or gone.
    [[gnu::init_priority(101)]] inline static const std::string LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME =
        "CpriLinkMaintenanceLofEvent";

    /// Reset request or acknowledgement.
    virtual void enableResetSending(const CpriLink& link) = 0;
    virtual void disableResetSending(const CpriLink& link) = 0;
    virtual bool isResetSendingEnabled(const CpriLink& link) = 0;
    /// Loss of frame.
    virtual void enableLofSending(const CpriLink& link) = 0;
    virtual void disableLofSending(const CpriLink& link) = 0;
    virtual bool isLofSendingEnabled(const CpriLink& link) = 0;
    /// Loss of signal.
    virtual void enableLosSending(const CpriLink& link) = 0;
    virtual void disableLosSending(const CpriLink& link) = 0;
    virtual bool isLosSendingEnabled(const CpriLink& link) = 0;
    /// Remote alarm indication.
    virtual void enableRaiSending(const CpriLink& link) = 0;
    virtual void disableRaiSending(const CpriLink& link) = 0;
    virtual bool isRaiSendingEnabled(const CpriLink& link) = 0;
    /// Service access point defect indication.
    virtual void enableSdiSending(const CpriLink& link) = 0;
    virtual void disableSdiSending(const CpriLink& link) = 0;
    virtual bool isSdiSendingEnabled(const CpriLink& link) = 0;

    void setLosEventCallback(AbstractLinkMaintenanceCallback* callback)
    {
        addCallback(LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME, callback);
    }
    void setLofEventCallback(AbstractLinkMaintenanceCallback* callback)
    {
        addCallback(LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkMaintenanceBif() = default;
    explicit AbstractCpriLinkMaintenanceBif(AbstractWorker& worker) : AbstractBif(worker) {}

    virtual void callLosEventCallback(LinkMaintenanceCallbackParam& parameter)
    {
        callCallback(LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME, parameter);
    }
    virtual void callLofEventCallback(LinkMaintenanceCallbackParam& parameter)
    {
        callCallback(LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
