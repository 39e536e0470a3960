// SPDX-License-Identifier: MIT
/// @file SimulatedCpriSynchronizer.hpp
/// The synchronizer of the CPRI links, over simulated ones.
#pragma once

#include "CpriLinks.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkSynchronizerBif.hpp"

#include <array>

namespace dorn::examples {

/// Measures the master frame whenever a link has come up. For one thread. Operations throw InvalidParameterException
/// for a link that the board does not have.
class SimulatedCpriSynchronizer : public vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkSynchronizerBif {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;
    using ERxLinkState = vel::hwapi::common::bif::baseband::cpri::ERxLinkState;

    /// @param links live as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedCpriSynchronizer(CpriLinks& links, vel::hwapi::common::AbstractWorker& worker)
        : AbstractCpriLinkSynchronizerBif(worker), m_links(links)
    {
    }

    void enableLink(const CpriLink& link) override { m_links.model(link).setEnabled(true); }
    void disableLink(const CpriLink& link) override { m_links.model(link).setEnabled(false); }
    bool isLinkEnabled(const CpriLink& link) override { return m_links.model(link).isEnabled(); }
    /// Periods of 307.2 MHz from the master frame's way out to its way in; 0 when the link is not synchronised.
    std::int32_t getMasterFrameMeasResult(const CpriLink& link) override;
    ERxLinkState getRxLinkSynchronizationState(const CpriLink& link) override;

    /// Raises what has changed since it was raised last.
    void tell();

private:
    CpriLinks& m_links;
    std::array<ERxLinkState, CpriLinks::count> m_told{};
};

} // namespace dorn::examples
