// SPDX-License-Identifier: MIT
#include "SimulatedCpriSynchronizer.hpp"

#include <utility>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::baseband::cpri;

std::int32_t SimulatedCpriSynchronizer::getMasterFrameMeasResult(const CpriLink& link)
{
    const CpriLinkModel& model = m_links.model(link);
    return model.receiver().isSynchronised() ? model.roundTrip() : 0;
}

ERxLinkState SimulatedCpriSynchronizer::getRxLinkSynchronizationState(const CpriLink& link)
{
    return m_links.model(link).receiver().state();
}

void SimulatedCpriSynchronizer::tell()
{
    for (std::size_t index = 0; index < CpriLinks::count; ++index) {
        const auto& [link, model] = m_links.all()[index];
        const ERxLinkState state = model.receiver().state();
        if (std::exchange(m_told[index], state) == state) {
            continue;
        }
        LinkSyncCallbackParam event(state, getMasterFrameMeasResult(link), link);
        callRxLinkSynchronizationCallback(event);
        if (model.receiver().isSynchronised()) {
            callMasterFrameMeasCallback(event);
        }
    }
}

} // namespace dorn::examples
