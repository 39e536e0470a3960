// SPDX-License-Identifier: MIT
/// @file SimulatedVsbController.hpp
/// A driver for vendor specific bytes whose CPRI links are simulated: a test carries the hyperframes.
///
///     SimulatedVsbController near, far;
///     far.receive(link, near.transmit(link)); // a hyperframe passes the link
#pragma once

#include "boundaryIf/baseband/cpri/AbstractCpriLinkVsbControllerBif.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <mutex>

namespace dorn::test {

/// The control words of a hyperframe: byte Y of basic frame X.
using Hyperframe = std::array<std::array<std::uint8_t, 10>, 256>;

/// Any thread may call any function, also of the regions. Events are raised while hyperframes are carried.
class SimulatedVsbController : public vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbControllerBif {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;
    using ECpriLinkRate = vel::hwapi::common::bif::baseband::cpri::ECpriLinkRate;
    using IngressBif = vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbIngressRegionBif;
    using EgressBif = vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkVsbEgressRegionBif;

    /// Regions that a link can have.
    static constexpr std::size_t REGIONS_OF_LINK = 4;

    SimulatedVsbController() = default;
    explicit SimulatedVsbController(vel::hwapi::common::AbstractWorker& worker)
        : AbstractCpriLinkVsbControllerBif(worker)
    {
    }

    IngressBif* createIngressRegion(const CpriLink& link) override;
    EgressBif* createEgressRegion(const CpriLink& link) override;

    /// What the link's configurator does with its line bit rate, 614.4 Mbit/s at first.
    void setLinkRate(const CpriLink& link, ECpriLinkRate rate);
    /// What the link's configurator does with its pointer p, 0 at first.
    void setEthernetSubchannelPointer(const CpriLink& link, std::uint32_t pointer);

    /// The next hyperframe that the link takes along.
    Hyperframe transmit(const CpriLink& link);
    /// Brings a hyperframe to the link.
    void receive(const CpriLink& link, const Hyperframe& hyperframe);

private:
    struct Region;
    template <class Interface>
    class RegionBif;
    class Ingress;
    class Egress;

    struct Link {
        ECpriLinkRate rate = vel::hwapi::common::bif::baseband::cpri::ECpriLinkRate_1x;
        std::uint32_t pointer = 0;
        std::map<std::uint32_t, Region*> regions; ///< by their ids
    };

    template <class NewRegion>
    NewRegion* create(const CpriLink& link);

    std::mutex m_mutex;                   ///< guards what follows and the regions; not held while an event is raised
    std::map<std::int32_t, Link> m_links; ///< by link id
    std::uint32_t m_lastRegionId = vel::hwapi::common::bif::baseband::cpri::VsbCallbackParam::INVALID_REGION_ID;
};

} // namespace dorn::test
