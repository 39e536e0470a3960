// SPDX-License-Identifier: MIT
#include "PhaseLockMonitoring.hpp"

#include "InvalidParameterException.hpp"

namespace dorn::examples {

using namespace vel::hwapi::common::bif::phaselockstatusmonitor;

void PhaseLockMonitoring::addPhaseLockStatusMonitor(AbstractPhaseLockStatusMonitor* monitor)
{
    if (!monitor) {
        throw vel::hwapi::common::InvalidParameterException("monitor null", __FILE__, __LINE__);
    }
    m_phaseLockStatusMonitors.push_back(monitor);
}

void PhaseLockMonitoring::doPhaseLockStatusMonitoring(double phaseError, std::uint64_t time)
{
    for (AbstractPhaseLockStatusMonitor* const monitor : m_phaseLockStatusMonitors) {
        if (monitor->isPhaseLockStatusChanged(static_cast<float>(phaseError), time)) {
            PhaseLockStatusCallbackParam event(monitor->getStatus(), monitor->getIdentifier());
            callPhaseLockStatusCallback(event);
        }
    }
}

} // namespace dorn::examples
