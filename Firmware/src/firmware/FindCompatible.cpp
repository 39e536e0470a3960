// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "binary.h"
#include "ddal_devicetree.h"
#include "firmware/DriverFailure.hpp"
#include "firmware/ImageSearch.hpp"

#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

constexpr std::int32_t mostCandidates = 10;

/// The candidates that fit, of which the last one is kept.
struct Compatible {
    std::int32_t count = 0;
    const char* name = "";
    std::uint32_t version = 0;
};

Compatible compatibleOf(const char (*candidates)[FIRMWARE_FILE_NAME_SIZE], std::int32_t count, std::uint32_t hwSwId,
                        std::int32_t minor)
{
    Compatible compatible;
    for (std::int32_t index = 0; index < count; ++index) {
        std::uint32_t version = 0;
        if (binary_version(candidates[index], hwSwId, minor, &version) == BINARY_VERSION_OK) {
            compatible = {compatible.count + 1, candidates[index], version};
        }
    }
    return compatible;
}

} // namespace

std::int32_t find_binary_compatible(const char* path, const char* board, const char* chip, std::uint32_t hwswid,
                                    std::int32_t minor, char* file, std::uint32_t size, std::uint32_t* version)
{
    copyText("", file, size);
    if (version) {
        *version = 0;
    }
    if (!file || !version) {
        return FIRMWARE_ARGUMENT_MISSING;
    }
    char candidates[mostCandidates][FIRMWARE_FILE_NAME_SIZE] = {};
    const std::int32_t count = find_binary_multiple(path, board, chip, candidates, mostCandidates);
    if (count < 1) {
        return count;
    }
    if (count > mostCandidates) {
        syslog(LOG_DEBUG,
               "%s(): There are too many files (%d) with same chip '%s' identifier, better naming convention for "
               "firmware update filenames are needed!",
               __func__, count, chip);
        return FIRMWARE_TOO_MANY_FILES;
    }
    if (hwswid == 0) {
        const std::int32_t result = ddal_devicetree_get_hw_sw_id(0, &hwswid);
        if (result != DDAL_OK) {
            logDriverFailure(__func__, "ddal_devicetree_get_hw_sw_id", result);
            return FIRMWARE_HWSWID_NOT_READ;
        }
    }
    const Compatible compatible = compatibleOf(candidates, count, hwswid, minor);
    if (compatible.count == 1) {
        copyText(compatible.name, file, size);
        *version = compatible.version;
    } else if (compatible.count == 0) {
        syslog(LOG_INFO, "%s(): There are %d files with chip '%s' identifier, but not compatible with this board",
               __func__, count, chip);
    } else {
        syslog(LOG_INFO, "%s(): %d compatible files are found, do not know which one to choose!", __func__,
               compatible.count);
    }
    return compatible.count;
}
