// SPDX-License-Identifier: MIT
/// @file AbstractCpriLinkRemoteNodeBif.hpp
/// What the node at the other end of a CPRI link says about itself.
#pragma once

#include "boundaryIf/AbstractBif.hpp"
#include "boundaryIf/baseband/cpri/LinkRemoteNodeCallbackParam.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What a driver of CPRI links tells of the node at the other end.
class AbstractCpriLinkRemoteNodeBif : public AbstractBif<LinkRemoteNodeCallbackParam> {
public:
    /// Takes the events of remote nodes; derived from by clients.
    class AbstractLinkRemoteNodeCallback : public CallbackFunctor {};

    /// Its protocol version has changed.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_PROTOCOL_VERSION_CHANGE_EVENT_NAME =
        "RemoteNodeProtocolVersionEvent";
    /// Its pointer p to the fast C&M channel has changed.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_ETHERNET_SUBCHANNEL_POINTER_CHANGE_EVENT_NAME =
        "RemoteNodeEthSubchPointerEvent";
    /// It asks for a reset or acknowledges one, or has ceased to.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_RESET_EVENT_NAME = "RemoteNodeResetEvent";
    /// It has lost the signal or found it again.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_LOS_EVENT_NAME = "RemoteNodeLosEvent";
    /// Its remote alarm indication has come or gone.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_RAI_EVENT_NAME = "RemoteNodeRaiEvent";
    /// Its service access point defect indication has come or gone.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_SDI_EVENT_NAME = "RemoteNodeSdiEvent";
    /// It has lost the frame or found it again.
    [[gnu::init_priority(101)]] inline static const std::string REMOTE_LOF_EVENT_NAME = "RemoteNodeLofEvent";

    /// Its pointer p (control byte Z.194.0).
    virtual std::uint32_t getEthernetSubchannelPointer(const CpriLink& link) = 0;
    /// Its bit rate of the slow C&M channel, as in control byte Z.66.0.
    virtual std::uint32_t getHdlcBitRate(const CpriLink& link) = 0;
    /// Its protocol version (control byte Z.2.0).
    virtual std::uint32_t getProtocolVersion(const CpriLink& link) = 0;

    /// Registers who is told when the remote node speaks another protocol version; the callback stays the caller's and
    /// must outlive the interface.
    void setProtocolVersionChangeEventCallback(AbstractLinkRemoteNodeCallback* callback)
    {
        addCallback(REMOTE_PROTOCOL_VERSION_CHANGE_EVENT_NAME, callback);
    }
    /// Registers who is told when the remote node's pointer p changes; the callback stays the caller's and must outlive
    /// the interface.
    void setEthernetSubchannelPointerChangeEventCallback(AbstractLinkRemoteNodeCallback* callback)
    {
        addCallback(REMOTE_ETHERNET_SUBCHANNEL_POINTER_CHANGE_EVENT_NAME, callback);
    }
    /// @{
    /// Registers who is told when the remote node begins or ends to report the condition that the function is named
    /// after (control byte Z.130.0); the callback stays the caller's and must outlive the interface.
    void setResetEventCallback(AbstractLinkRemoteNodeCallback* callback)
    {
        addCallback(REMOTE_RESET_EVENT_NAME, callback);
    }
    void setLosEventCallback(AbstractLinkRemoteNodeCallback* callback) { addCallback(REMOTE_LOS_EVENT_NAME, callback); }
    void setRaiEventCallback(AbstractLinkRemoteNodeCallback* callback) { addCallback(REMOTE_RAI_EVENT_NAME, callback); }
    void setSdiEventCallback(AbstractLinkRemoteNodeCallback* callback) { addCallback(REMOTE_SDI_EVENT_NAME, callback); }
    void setLofEventCallback(AbstractLinkRemoteNodeCallback* callback) { addCallback(REMOTE_LOF_EVENT_NAME, callback); }
    /// @}

protected:
    AbstractCpriLinkRemoteNodeBif() = default;
    /// From initialize() on events go through @p worker, which stays the caller's.
    explicit AbstractCpriLinkRemoteNodeBif(AbstractWorker& worker) : AbstractBif(worker) {}

    /// @{
    /// Raises the event that the function is named after.
    virtual void callProtocolVersionChangeEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_PROTOCOL_VERSION_CHANGE_EVENT_NAME, parameter);
    }
    virtual void callEthernetSubchannelPointerChangeEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_ETHERNET_SUBCHANNEL_POINTER_CHANGE_EVENT_NAME, parameter);
    }
    virtual void callResetEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_RESET_EVENT_NAME, parameter);
    }
    virtual void callLosEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_LOS_EVENT_NAME, parameter);
    }
    virtual void callRaiEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_RAI_EVENT_NAME, parameter);
    }
    virtual void callSdiEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_SDI_EVENT_NAME, parameter);
    }
    virtual void callLofEventCallback(LinkRemoteNodeCallbackParam& parameter)
    {
        callCallback(REMOTE_LOF_EVENT_NAME, parameter);
    }
    /// @}
};

} // namespace vel::hwapi::common::bif::baseband::cpri
