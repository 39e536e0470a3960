// SPDX-License-Identifier: MIT
/// @file ObsaiLinks.hpp
/// The board's OBSAI links.
#pragma once

#include "ObsaiLinkModel.hpp"
#include "boundaryIf/baseband/obsai/AbstractObsaiLink.hpp"

#include <array>
#include <cstddef>

namespace dorn::examples {

/// A link of the board and what is simulated of it.
struct SimulatedObsaiLink {
    vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLink link;
    ObsaiLinkModel model;
};

class ObsaiLinks {
public:
    static constexpr std::size_t count = 2;
    using Links = std::array<SimulatedObsaiLink, count>;

    ObsaiLinks();

    Links& all() { return m_links; }
    /// @throws InvalidParameterException "no such OBSAI link"
    ObsaiLinkModel& model(const vel::hwapi::common::bif::baseband::obsai::AbstractObsaiLink& link);

    /// Lets a step pass. @return whether anything has changed
    bool step();

private:
    Links m_links;
};

} // namespace dorn::examples
