// SPDX-License-Identifier: MIT
/// @file LinkRemoteNodeCallbackParam.hpp
/// What an event about the node at the other end of a CPRI link tells.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// What the node at the other end of a link reports; which field has changed is told by the event's name.
class LinkRemoteNodeCallbackParam : public CallbackParam {
public:
    LinkRemoteNodeCallbackParam() = default;
    /// Has every field set.
    LinkRemoteNodeCallbackParam(bool active, const CpriLink& link, std::uint32_t ethernetSubchannelPointer,
                                std::uint32_t protocolVersion)
        : m_link(link),
          m_active(active),
          m_ethernetSubchannelPointer(ethernetSubchannelPointer),
          m_protocolVersion(protocolVersion)
    {
    }

    /// The link in this object.
    const CpriLink* getLink() const { return &m_link; }
    /// Copies @p link.
    void setLink(const CpriLink& link) { m_link = link; }

    /// Whether the remote node reports the condition of the event.
    bool getActive() const { return m_active; }
    /// True when the condition has begun, false when it has ended.
    void setActive(bool active) { m_active = active; }

    /// The remote node's pointer p (control byte Z.194.0).
    std::uint32_t getEthernetSubchannelPointer() const { return m_ethernetSubchannelPointer; }
    /// As getEthernetSubchannelPointer() returns it.
    void setEthernetSubchannelPointer(std::uint32_t pointer) { m_ethernetSubchannelPointer = pointer; }

    /// The remote node's protocol version (control byte Z.2.0).
    std::uint32_t getProtocolVersion() const { return m_protocolVersion; }
    /// As getProtocolVersion() returns it.
    void setProtocolVersion(std::uint32_t version) { m_protocolVersion = version; }

    bool operator==(const LinkRemoteNodeCallbackParam&) const = default;

private:
    CpriLink m_link;
    bool m_active = false;
    std::uint32_t m_ethernetSubchannelPointer = 0;
    std::uint32_t m_protocolVersion = 0;
};

} // namespace vel::hwapi::common::bif::baseband::cpri
