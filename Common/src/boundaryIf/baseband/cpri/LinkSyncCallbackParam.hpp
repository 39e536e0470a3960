// SPDX-License-Identifier: MIT
/// @file LinkSyncCallbackParam.hpp
/// What an event of a CPRI link's synchronizer tells.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"
#include "boundaryIf/baseband/cpri/CpriTypes.hpp"

namespace vel::hwapi::common::bif::baseband::cpri {

/// How the synchronisation of a CPRI link goes.
class LinkSyncCallbackParam : public CallbackParam {
public:
    LinkSyncCallbackParam() = default;
    /// Has every field set.
    LinkSyncCallbackParam(ERxLinkState rxState, std::int32_t masterFrameMeasResult, const CpriLink& link)
        : m_rxLinkSynchronizationState(rxState), m_masterFrameMeasResult(masterFrameMeasResult), m_link(link)
    {
    }

    /// @{
    /// The receiver's state, after the change that is reported.
    ERxLinkState getRxLinkSynchronizationState() const { return m_rxLinkSynchronizationState; }
    void setRxLinkSynchronizationState(ERxLinkState state) { m_rxLinkSynchronizationState = state; }
    /// @}

    /// @{
    /// The measured beginning of the master frame, in the driver's unit.
    std::int32_t getMasterFrameMeasResult() const { return m_masterFrameMeasResult; }
    void setMasterFrameMeasResult(std::int32_t result) { m_masterFrameMeasResult = result; }
    /// @}

    /// The link in this object.
    const CpriLink* getLink() const { return &m_link; }
    /// Copies @p link.
    void setLink(const CpriLink& link) { m_link = link; }

    bool operator==(const LinkSyncCallbackParam&) const = default;

private:
    ERxLinkState m_rxLinkSynchronizationState = ERxLinkState_XACQ1;
    std::int32_t m_masterFrameMeasResult = 0;
    CpriLink m_link;
};

} // namespace vel::hwapi::common::bif::baseband::cpri
