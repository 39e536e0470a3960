// SPDX-License-Identifier: MIT
/// @file IdentityLog.hpp
/// How autodetection logs: under the print switch `ERadHwapi_PrintAdetInfo`, at two severities.
#pragma once

#include "AaSysLog.h"
#include "AaTypes.h"
#include "rad/ERadHwapi.h"

#include <cstdint>

namespace vel::hwapi::adet {

inline constexpr std::uint32_t logFeature = ERadHwapi_PrintAdetInfo;
inline constexpr EAaSysLogSeverityLevel failureSeverity = EAaSysLogSeverityLevel_Warning;
inline constexpr EAaSysLogSeverityLevel traceSeverity = EAaSysLogSeverityLevel_Debug;

/// Looks at what a call of the driver seam has returned, and logs a failure.
/// @param caller the function of ApiAutodetInfo.h that made the call
/// @param driver the driver's function
/// @return 1 when it is #DDAL_OK, otherwise 0
TBoolean checkDriver(const char* caller, const char* driver, std::int32_t result) noexcept;

/// The same for a call that asked for the external module at a port.
TBoolean checkDriver(const char* caller, const char* driver, std::uint32_t portId, std::int32_t result) noexcept;

} // namespace vel::hwapi::adet
