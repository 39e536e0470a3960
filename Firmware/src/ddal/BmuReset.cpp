// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "binary/OwnedFile.hpp"
#include "firmware/UnitIdentity.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

/// An attribute of the BMU's driver: who writes 1 has it load its image.
struct ReconfigurationRow {
    std::string_view unit;
    const char* attribute;
};

constexpr const char* directAttribute = "/sys/bus/i2c/devices/0-0031/fpga_reconfig";
constexpr const char* platformAttribute = "/sys/devices/platform/i2c-octeon.0/i2c-0/0-0031/fpga_reconfig";

constexpr std::array<ReconfigurationRow, 5> reconfigurations{{{"KIVN", directAttribute},
                                                              {"KIVD", platformAttribute},
                                                              {"KIVE", platformAttribute},
                                                              {"KIVR", platformAttribute},
                                                              {"KIVS", platformAttribute}}};
static_assert(reconfigurations.size() == 5);

void reconfigure(const char* attribute, const char* function)
{
    const OwnedFile file(AaFileOpen(attribute, "w"));
    if (!file) {
        syslog(LOG_INFO, "%s(): fopen(%s, w) failed", function, attribute);
        return;
    }
    const std::int32_t written = AaFileWrite(file.get(), "1", 1);
    if (written != 1) {
        syslog(LOG_INFO, "%s(): fwrite(1, 1, 1, file) failed with %d", function, std::max(written, 0));
    }
}

} // namespace

std::int32_t ddal_bmu_reset()
{
    UnitIdText unit{};
    if (!readUnitId(unit, __func__)) {
        return -1;
    }
    const auto* const row = std::find_if(reconfigurations.begin(), reconfigurations.end(),
                                         [&unit](const ReconfigurationRow& one) { return one.unit == unit.data(); });
    if (row != reconfigurations.end()) {
        reconfigure(row->attribute, __func__);
    }
    return 0;
}
