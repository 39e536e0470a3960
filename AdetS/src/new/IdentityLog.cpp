// SPDX-License-Identifier: MIT
#include "new/IdentityLog.hpp"

#include "ddal_error.h"

namespace vel::hwapi::adet {

TBoolean checkDriver(const char* caller, const char* driver, std::int32_t result) noexcept
{
    if (result == DDAL_OK) {
        return 1;
    }
    AaSysLogPrintE(failureSeverity, logFeature, "%s(): %s() returned '0x%x' (not DDAL_OK)", caller, driver,
                   static_cast<unsigned>(result));
    return 0;
}

TBoolean checkDriver(const char* caller, const char* driver, std::uint32_t portId, std::int32_t result) noexcept
{
    if (result == DDAL_OK) {
        return 1;
    }
    AaSysLogPrintE(failureSeverity, logFeature, "%s(): %s(port_id=0x%x) returned '0x%x' (not DDAL_OK)", caller, driver,
                   portId, static_cast<unsigned>(result));
    return 0;
}

} // namespace vel::hwapi::adet
