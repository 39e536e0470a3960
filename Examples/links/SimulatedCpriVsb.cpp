// SPDX-License-Identifier: MIT
#include "SimulatedCpriVsb.hpp"

#include <algorithm>

namespace dorn::examples {

using vel::hwapi::common::bif::baseband::cpri::VsbCallbackParam;

namespace {

/// @return null when the link has all the regions that it can have.
template <class Region>
Region* create(typename Region::Regions& regions, CpriLinkModel& model, const SimulatedCpriVsb::CpriLink& link,
               std::uint32_t& lastId)
{
    const auto present =
        std::count_if(regions.begin(), regions.end(), [&link](auto* region) { return region->getLink() == link; });
    if (static_cast<std::size_t>(present) == SimulatedCpriVsb::maxRegions) {
        return nullptr;
    }
    return new Region(regions, model, link, ++lastId);
}

} // namespace

SimulatedVsbIngressRegion* SimulatedCpriVsb::createIngressRegion(const CpriLink& link)
{
    return create<SimulatedVsbIngressRegion>(m_ingressRegions, m_links.model(link), link, m_lastRegionId);
}

SimulatedVsbEgressRegion* SimulatedCpriVsb::createEgressRegion(const CpriLink& link)
{
    return create<SimulatedVsbEgressRegion>(m_egressRegions, m_links.model(link), link, m_lastRegionId);
}

void SimulatedCpriVsb::tell()
{
    for (auto* const region : m_egressRegions) {
        if (region->look()) {
            VsbCallbackParam event(region->getRegionId(), region->bytes(), region->getLink());
            callCpriVsbBytesTransmittedCallback(event);
        }
    }
    for (auto* const region : m_ingressRegions) {
        if (region->look()) {
            VsbCallbackParam event(region->getRegionId(), region->bytes(), region->getLink());
            callCpriVsbBytesReceivedCallback(event);
        }
    }
}

} // namespace dorn::examples
