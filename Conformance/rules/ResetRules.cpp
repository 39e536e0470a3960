// SPDX-License-Identifier: MIT
// The reset of the unit; the last rule of all.
#include "Check.hpp"
#include "Finding.hpp"
#include "Rules.hpp"
#include "ddal_watchdog.h"

#include <array>
#include <string>

namespace dorn::conformance {
namespace {

void rebootDoesNotReturn()
{
    announceEnd();
    const int32_t result = ddal_watchdog_reboot();
    throw Broken("ddal_watchdog_reboot() returned " + std::to_string(result));
}

constexpr std::array rules{
    Rule{
        "reset.reboot-does-not-return", "ddal_watchdog.h", "ddal_watchdog_reboot",
        "ddal_watchdog_reboot() ends every process where it stands and does not return; on a board the suite ends here "
        "with the unit",
        rebootDoesNotReturn, Effect::Destructive},
};

} // namespace

Rules resetRules()
{
    return rules;
}

} // namespace dorn::conformance
