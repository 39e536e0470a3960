// SPDX-License-Identifier: MIT
#include "SimulatedCpriMaintenance.hpp"

#include <utility>

namespace dorn::examples {

using vel::hwapi::common::bif::baseband::cpri::LinkMaintenanceCallbackParam;

void SimulatedCpriMaintenance::tell()
{
    for (std::size_t index = 0; index < CpriLinks::count; ++index) {
        const auto& [link, model] = m_links.all()[index];
        const Lost lost{model.isEnabled() && model.receiver().hasLostSignal(),
                        model.isEnabled() && model.receiver().hasLostFrame()};
        const Lost told = std::exchange(m_told[index], lost);
        if (lost.signal != told.signal) {
            LinkMaintenanceCallbackParam event(lost.signal, link);
            callLosEventCallback(event);
        }
        if (lost.frame != told.frame) {
            LinkMaintenanceCallbackParam event(lost.frame, link);
            callLofEventCallback(event);
        }
    }
}

} // namespace dorn::examples
