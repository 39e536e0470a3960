// SPDX-License-Identifier: MIT
#include "SimulatedSfp.hpp"

namespace dorn::examples {

using vel::hwapi::common::bif::baseband::sfp::SfpCallbackParam;
using vel::hwapi::common::bif::baseband::sfp::TSfpModuleId;

static_assert(SfpCages::noLink == SimulatedSfp::UNKNOWN_PHYSICAL_LINK_ID);

std::uint32_t SimulatedSfp::getPhysicalLinkId(TSfpModuleId moduleId)
{
    return moduleId < SfpCages::count ? m_cages.at(moduleId).physicalLinkId : UNKNOWN_PHYSICAL_LINK_ID;
}

void SimulatedSfp::getSfpModuleIds(std::vector<std::uint32_t>& moduleIds)
{
    moduleIds.clear();
    for (std::uint32_t cage = 0; cage < SfpCages::count; ++cage) {
        moduleIds.push_back(cage);
    }
}

bool SimulatedSfp::pull(std::uint32_t cage)
{
    const bool isPulled = m_cages.pull(cage);
    raise(cage);
    return isPulled;
}

bool SimulatedSfp::step()
{
    const bool isAnyStarting = m_cages.step();
    for (std::uint32_t cage = 0; cage < SfpCages::count; ++cage) {
        raise(cage);
    }
    return isAnyStarting;
}

/// Tells of a cage if there is news of it.
void SimulatedSfp::raise(std::uint32_t cage)
{
    const bool isReady = m_cages.at(cage).module == ESfpModule_Ready;
    if (isReady == m_isDetected[cage]) {
        return;
    }
    m_isDetected[cage] = isReady;
    SfpCallbackParam event(isReady, m_cages.at(cage).physicalLinkId);
    callSfpCallback(event);
}

} // namespace dorn::examples
