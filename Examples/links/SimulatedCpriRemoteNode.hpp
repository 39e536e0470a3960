// SPDX-License-Identifier: MIT
/// @file SimulatedCpriRemoteNode.hpp
/// What the far ends of the CPRI links say, over simulated ones.
#pragma once

#include "CpriLinks.hpp"
#include "boundaryIf/baseband/cpri/AbstractCpriLinkRemoteNodeBif.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

/// Values that a far end has said stay known when it is heard no more; the conditions that it reports do not. For one
/// thread. Operations throw InvalidParameterException for a link that the board does not have.
class SimulatedCpriRemoteNode : public vel::hwapi::common::bif::baseband::cpri::AbstractCpriLinkRemoteNodeBif {
public:
    using CpriLink = vel::hwapi::common::bif::baseband::cpri::CpriLink;

    /// @param links live as long as the driver
    /// @param worker delivers the events once the driver has been initialized
    SimulatedCpriRemoteNode(CpriLinks& links, vel::hwapi::common::AbstractWorker& worker)
        : AbstractCpriLinkRemoteNodeBif(worker), m_links(links)
    {
    }

    /// These are 0 until the far end has been heard.
    std::uint32_t getEthernetSubchannelPointer(const CpriLink& link) override;
    std::uint32_t getHdlcBitRate(const CpriLink& link) override;
    std::uint32_t getProtocolVersion(const CpriLink& link) override;

    /// Raises what has changed since it was raised last.
    void tell();

private:
    /// What has been said of a far end.
    struct Told {
        bool hasHeard = false;
        std::uint32_t signals = 0;
    };

    void tellSignals(const CpriLink& link, std::uint32_t signals, std::uint32_t changed);

    CpriLinks& m_links;
    std::array<Told, CpriLinks::count> m_told{};
};

} // namespace dorn::examples
