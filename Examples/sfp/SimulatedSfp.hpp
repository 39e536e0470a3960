// SPDX-License-Identifier: MIT
/// @file SimulatedSfp.hpp
/// The driver of the SFP cages, over simulated ones.
#pragma once

#include "SfpCages.hpp"
#include "boundaryIf/baseband/sfp/AbstractSfpBif.hpp"

#include <array>

namespace dorn::examples {

/// Raises "SfpEvent" when a module can be read, and when one that could be read is pulled: one that is pulled while it
/// starts has never been there. For one thread.
class SimulatedSfp : public vel::hwapi::common::bif::baseband::sfp::AbstractSfpBif {
public:
    /// @param worker delivers the events once the driver has been initialized
    explicit SimulatedSfp(vel::hwapi::common::AbstractWorker& worker) : AbstractSfpBif(worker) {}

    /// The link that is led to a module's cage; UNKNOWN_PHYSICAL_LINK_ID for a cage without link and for no cage.
    std::uint32_t getPhysicalLinkId(vel::hwapi::common::bif::baseband::sfp::TSfpModuleId moduleId) override;
    /// The numbers of all cages, in place of what was in @p moduleIds.
    void getSfpModuleIds(std::vector<std::uint32_t>& moduleIds) override;

    /// What happens to the hardware; see SfpCages.
    bool plug(std::uint32_t cage) { return m_cages.plug(cage); }
    bool pull(std::uint32_t cage);
    bool step();

    const SfpCages& cages() const { return m_cages; }

private:
    void raise(std::uint32_t cage);

    SfpCages m_cages;
    std::array<bool, SfpCages::count> m_isDetected{};
};

} // namespace dorn::examples
