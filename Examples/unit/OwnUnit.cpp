// SPDX-License-Identifier: MIT
#include "OwnUnit.hpp"

#include "AaSysLog.h"
#include "new/ApiAutodetInfo.h"

namespace dorn::examples {

void logOwnUnit(std::uint32_t feature)
{
    char id[8] = {};
    char serialNumber[18] = {};
    if (ApiGetLocalUnitId(id, sizeof id - 1) == 0) {
        return; // autodetection has said why
    }
    ApiGetLocalUnitSerialNumber(serialNumber, sizeof serialNumber - 1);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Vip, feature, "Runs on unit %s %s: HW/SW id 0x%06X, type %d, version %d", id,
                   serialNumber, ApiGetLocalUnitHwSwId(), ApiGetLocalUnitType(), ApiGetLocalUnitVersion());
}

} // namespace dorn::examples
