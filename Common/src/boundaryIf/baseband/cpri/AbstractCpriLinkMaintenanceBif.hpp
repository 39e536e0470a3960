// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkMaintenanceBif.hpp
/// Layer 1 maintenance of CPRI links: sends the signals of control byte Z.130.0 to the other end, and tells what this
/// end has lost.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/LinkMaintenanceCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What a driver of CPRI links offers for its own end's alarms: those it sends, and those of its receiver.
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

    /// @{
    /// Reset request or acknowledgement.
    virtual void enableResetSending(const CpriLink& link) = 0;
    virtual void disableResetSending(const CpriLink& link) = 0;
    virtual bool isResetSendingEnabled(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// Loss of frame.
    virtual void enableLofSending(const CpriLink& link) = 0;
    virtual void disableLofSending(const CpriLink& link) = 0;
    virtual bool isLofSendingEnabled(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// Loss of signal.
    virtual void enableLosSending(const CpriLink& link) = 0;
    virtual void disableLosSending(const CpriLink& link) = 0;
    virtual bool isLosSendingEnabled(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// Remote alarm indication.
    virtual void enableRaiSending(const CpriLink& link) = 0;
    virtual void disableRaiSending(const CpriLink& link) = 0;
    virtual bool isRaiSendingEnabled(const CpriLink& link) = 0;
    /// @}

    /// @{
    /// Service access point defect indication.
    virtual void enableSdiSending(const CpriLink& link) = 0;
    virtual void disableSdiSending(const CpriLink& link) = 0;
    virtual bool isSdiSendingEnabled(const CpriLink& link) = 0;
    /// @}

    /// Registers who is told when the receiver loses or regains the signal (LOS); the callback stays the caller's and
    /// must outlive the interface.
    void setLosEventCallback(AbstractLinkMaintenanceCallback* callback)
    {
        addCallback(LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME, callback);
    }
    /// Registers who is told when the receiver loses or regains the frame (LOF); the callback stays the caller's and
    /// must outlive the interface.
    void setLofEventCallback(AbstractLinkMaintenanceCallback* callback)
    {
        addCallback(LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME, callback);
    }

protected:
    AbstractCpriLinkMaintenanceBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractCpriLinkMaintenanceBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// Raises #LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME.
    virtual void callLosEventCallback(LinkMaintenanceCallbackParam& parameter)
    {
        callCallback(LINK_MAINTENANCE_LOS_ACTIVITY_EVENT_NAME, parameter);
    }
    /// Raises #LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME.
    virtual void callLofEventCallback(LinkMaintenanceCallbackParam& parameter)
    {
        callCallback(LINK_MAINTENANCE_LOF_ACTIVITY_EVENT_NAME, parameter);
    }
};

} // namespace vel::hwapi::common::bif::baseband::cpri
