// SPDX-License-Identifier: MIT
#include "firmware/DriverFailure.hpp"

#include "ddal_error.h"

#include <array>
#include <syslog.h>

namespace vel::hwapi::firmware {

void logDriverFailure(const char* function, const char* driverFunction, std::int32_t code)
{
    std::array<char, 64> text{};
    ddal_strerror(code, text.data(), text.size() - 1);
    syslog(LOG_INFO, "%s(): %s() failed with error %d '%s'", function, driverFunction, code, text.data());
}

} // namespace vel::hwapi::firmware
