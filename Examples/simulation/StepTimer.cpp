// SPDX-License-Identifier: MIT
#include "StepTimer.hpp"

#include "AaSysLog.h"

namespace dorn::examples {

void StepTimer::start(std::chrono::microseconds period)
{
    if (m_isArmed) {
        return;
    }
    m_isArmed = AaTimerArm(period.count(), this) != 0;
    if (!m_isArmed) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_feature, "No timer: the simulated hardware stands still");
    }
}

bool StepTimer::takes(StepTimeOutMsg timeOut)
{
    if (timeOut->identity != this) {
        return false;
    }
    m_isArmed = false;
    return true;
}

} // namespace dorn::examples
