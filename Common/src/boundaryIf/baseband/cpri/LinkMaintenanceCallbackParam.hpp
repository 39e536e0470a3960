// SPDX-License-Identifier: MIT
/// @file LinkMaintenanceCallbackParam.hpp
/// What a maintenance event of a CPRI link tells: whether a condition has come or gone, and on which link.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// Which alarm of a link's receiver has come or gone; the event's name says which kind it is.
class LinkMaintenanceCallbackParam : public CallbackParam {
public:
    LinkMaintenanceCallbackParam() = default;
    /// Has every field set.
    LinkMaintenanceCallbackParam(bool active, const CpriLink& link) : m_active(active), m_link(link) {}

    /// True when the alarm has come, false when it has gone.
    bool getActive() const { return m_active; }
    /// True when the alarm has come, false when it has gone.
    void setActive(bool active) { m_active = active; }

    /// The link in this object.
    const CpriLink* getLink() const { return &m_link; }
    /// Copies @p link.
    void setLink(const CpriLink& link) { m_link = link; }

    bool operator==(const LinkMaintenanceCallbackParam&) const = default;

private:
    bool m_active = false;
    CpriLink m_link;
};

} // namespace vel::hwapi::common::bif::baseband::cpri
