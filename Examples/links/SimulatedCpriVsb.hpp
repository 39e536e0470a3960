// SPDX-License-Identifier: MIT
/// @file SimulatedCpriVsb.hpp
/// The controller of vendor specific bytes of the CPRI links, over simulated ones.
#pragma once

#include "SimulatedVsbRegion.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbControllerBif.hpp"

#include <cstddef>
#include <cstdint>

namespace dorn::examples {

/// The far end gives back what it gets: bytes that have been written to an egress region come back to an ingress region
/// with the same control words. For one thread. Operations throw InvalidParameterException for a link that the board
/// does not have.
class SimulatedCpriVsb : public vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbControllerBif {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;

    /// How many regions of a direction there can be on a link.
    static constexpr std::size_t maxRegions = 4;

    /// @param links live as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedCpriVsb(CpriLinks& links, vel::hwapi::common::AbstractWorker& worker)
        : AbstractCpriLinkVsbControllerBif(worker), m_links(links)
    {
    }

    SimulatedVsbIngressRegion* createIngressRegion(const CpriLink& link) override;
    SimulatedVsbEgressRegion* createEgressRegion(const CpriLink& link) override;

    /// Raises what has come and gone with a step. Call it after every step.
    void tell();

private:
    CpriLinks& m_links;
    std::uint32_t m_lastRegionId = vel::hwapi::common::bif::baseband::cpri::VsbCallbackParam::INVALID_REGION_ID;
    SimulatedVsbIngressRegion::Regions m_ingressRegions;
    SimulatedVsbEgressRegion::Regions m_egressRegions;
};

} // namespace dorn::examples
