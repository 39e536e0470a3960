// SPDX-License-Identifier: MIT
#include "ResetShared.h"

#include "AaSysLog.h"
#include "ddal_watchdog.h"
#include "rad/ERadHwapi.h"

#include <cstdint>

void ApiResetMcu()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RESET, "ApiResetMcu() called");
    const std::int32_t result = ddal_watchdog_reboot();
    if (result != DDAL_OK) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Info, ERadHwapi_RESET,
                       "ApiResetMcu() could not reboot, ddal error code: %d", result);
    }
}
