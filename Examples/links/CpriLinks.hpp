// SPDX-License-Identifier: MIT
/// @file CpriLinks.hpp
/// The board's CPRI links, which all CPRI drivers share.
#pragma once

#include "CpriLinkModel.hpp"
#include "boundaryIf/baseband/cpri/CpriLink.hpp"

#include <array>
#include <cstddef>

namespace dorn::examples {

/// A link of the board and what is simulated of it.
struct SimulatedCpriLink {
    vel::hwapi::common::bif::baseband::cpri::CpriLink link;
    CpriLinkModel model;
};

class CpriLinks {
public:
    static constexpr std::size_t count = 2;
    using Links = std::array<SimulatedCpriLink, count>;

    /// Line bit rate of all links, and where their fast C&M channel begins.
    static constexpr auto rate = vel::hwapi::common::bif::baseband::cpri::ECpriLinkRate_4x;
    static constexpr std::uint32_t ethernetSubchannelPointer = 20;

    CpriLinks();

    Links& all() { return m_links; }
    /// @throws InvalidParameterException "no such CPRI link"
    CpriLinkModel& model(const vel::hwapi::common::bif::baseband::cpri::CpriLink& link);

    /// Lets a step pass. @return whether anything has changed
    bool step();

private:
    Links m_links;
};

} // namespace dorn::examples
