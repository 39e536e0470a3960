// SPDX-License-Identifier: MIT
/// @file LinkSyncCallbackParam.hpp
/// What an event of an OBSAI link's synchronizer tells.
#pragma once

#include "boundaryIf/CallbackParam.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLink.hpp"
#include "boundaryIf/baseband/obsai/ObsaiTypes.hpp"

namespace vel::hwapi::common::bif::baseband::obsai {

/// How the synchronisation of an OBSAI link goes.
class LinkSyncCallbackParam : public CallbackParam {
public:
    LinkSyncCallbackParam() = default;
    /// Has every field set.
    LinkSyncCallbackParam(ERxLinkState rxState, ETxLinkState txState, std::uint32_t piResult,
                          const AbstractObsaiLink& link)
        : m_rxLinkSynchronizationState(rxState),
          m_txLinkSynchronizationState(txState),
          m_piMeasurementResult(piResult),
          m_link(link)
    {
    }

    /// @{
    /// The receiver's state, after the change that is reported.
    ERxLinkState getRxLinkSynchronizationState() const { return m_rxLinkSynchronizationState; }
    void setRxLinkSynchronizationState(ERxLinkState state) { m_rxLinkSynchronizationState = state; }
    /// @}

    /// @{
    /// The transmitter's state, after the change that is reported.
    ETxLinkState getTxLinkSynchronizationState() const { return m_txLinkSynchronizationState; }
    void setTxLinkSynchronizationState(ETxLinkState state) { m_txLinkSynchronizationState = state; }
    /// @}

    /// The measured offset of received master frames (RP3's pi).
    std::uint32_t getPiMeasurementResult() const { return m_piMeasurementResult; }
    /// As getPiMeasurementResult() returns it.
    void setPiMeasurementResult(std::uint32_t result) { m_piMeasurementResult = result; }

    /// The link in this object.
    const AbstractObsaiLink* getLink() const { return &m_link; }
    /// Copies @p link.
    void setLink(const AbstractObsaiLink& link) { m_link = link; }

    bool operator==(const LinkSyncCallbackParam&) const = default;

private:
    ERxLinkState m_rxLinkSynchronizationState = ERxLinkState_Unsync;
    ETxLinkState m_txLinkSynchronizationState = ETxLinkState_Off;
    std::uint32_t m_piMeasurementResult = 0;
    AbstractObsaiLink m_link;
};

} // namespace vel::hwapi::common::bif::baseband::obsai
