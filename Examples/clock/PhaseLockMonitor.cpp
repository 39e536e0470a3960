// SPDX-License-Identifier: MIT
#include "PhaseLockMonitor.hpp"

#include <cmath>
#include <limits>

namespace dorn::examples {

using namespace vel::hwapi::common::bif::phaselockstatusmonitor;

bool PhaseLockMonitor::isPhaseLockStatusChanged(float phaseError, std::uint64_t)
{
    const bool isBeyond = !(std::fabs(phaseError) <= m_phaseErrorLimit); // what is not a number is beyond
    if (isBeyond != m_isRowBeyond) {
        m_isRowBeyond = isBeyond;
        m_row = 0;
    }
    if (m_row < std::numeric_limits<std::uint32_t>::max()) {
        ++m_row;
    }
    const EPhaseLockStatus found = isBeyond ? EPhaseLockStatus_Exceed : EPhaseLockStatus_Ok;
    if (found == m_status || m_row < (isBeyond ? m_setErrorThreshold : m_unsetErrorThreshold)) {
        return false;
    }
    m_status = found;
    return true;
}

void PhaseLockMonitor::setParameters(float limit, std::uint32_t setThreshold, std::uint32_t unsetThreshold)
{
    AbstractPhaseLockStatusMonitor::setParameters(limit, setThreshold, unsetThreshold);
    m_row = 0;
}

} // namespace dorn::examples
