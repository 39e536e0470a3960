// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "ddal_fpga.h"
#include "firmware/DriverFailure.hpp"
#include "firmware/FirmwareCatalogue.hpp"
#include "firmware/ImageSearch.hpp"
#include "firmware/UnitIdentity.hpp"

#include <algorithm>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

/// When an image is taken.
using Rule = bool (*)(std::uint32_t image, std::uint32_t active);

bool isNewer(std::uint32_t image, std::uint32_t active)
{
    return image > active;
}

bool isAnother(std::uint32_t image, std::uint32_t active)
{
    return image != active;
}

/// Finds the image and compares it with what runs.
std::int32_t decide(const ImageSearch& search, const ImageWords& words, std::uint32_t fpgaId, Rule isWanted,
                    char* filename, std::uint32_t size)
{
    FoundImage image;
    if (const std::int32_t found = findTheImage(search, words, image); found != 1) {
        return found;
    }
    std::uint32_t active = 0;
    const std::int32_t result = ddal_fpga_get_active_version(fpgaId, &active);
    if (result != DDAL_OK) {
        logDriverFailure(words.function, "ddal_fpga_get_active_version", result);
        return FIRMWARE_ACTIVE_VERSION_NOT_READ;
    }
    syslog(LOG_INFO, "%s(): active %s version 0x%X (%d)", words.function, words.part, active,
           static_cast<std::int32_t>(active));
    copyText(image.name.data(), filename, size);
    const bool isNeeded = isWanted(image.version, active);
    syslog(LOG_INFO, isNeeded ? "%s(): yes" : "%s(): no", words.function);
    return isNeeded ? 1 : 0;
}

} // namespace

std::int32_t is_bmu_update_needed(char* filename, std::uint32_t size)
{
    constexpr std::uint32_t bmu = 1;
    copyText("", filename, size);
    const bool isMicro = isThisUnit(UnitKey::Version, microBmuUnit);
    const char* const chip = isMicro ? microBmuChipIdentifier : bmuChipIdentifier;
    return decide({.board = nullptr, .chip = chip, .hwSwId = 0, .minor = 0},
                  {.function = __func__, .part = "bmu", .nonePriority = LOG_DEBUG}, bmu, isNewer, filename, size);
}

std::int32_t is_bmu_update_needed_no_mcu(char* filename, std::uint32_t size, std::uint32_t board, std::uint32_t hwswid)
{
    copyText("", filename, size);
    const auto* const row =
        std::find_if(bmuRows.begin(), bmuRows.end(), [board](const BmuRow& one) { return one.board == board; });
    if (row == bmuRows.end()) {
        syslog(LOG_DEBUG, "%s(): no support ddal board 0x%X", __func__, board);
        return FIRMWARE_NOT_SUPPORTED;
    }
    return decide({.board = "KIV", .chip = bmuChipIdentifier, .hwSwId = hwswid, .minor = 0},
                  {.function = __func__, .part = "bmu", .nonePriority = LOG_DEBUG}, row->id, isNewer, filename, size);
}

std::int32_t is_fpga_update_needed(char* filename, std::uint32_t size)
{
    copyText("", filename, size);
    const char* name = nullptr;
    const char* chip = nullptr;
    std::uint32_t id = 0;
    if (get_fpga(&name, &chip, &id) != 0) {
        syslog(LOG_DEBUG, "%s(): no fpga specified for unit '%s'", __func__, unit_version());
        return FIRMWARE_NOT_SUPPORTED;
    }
    return decide({.board = nullptr, .chip = chip, .hwSwId = 0, .minor = 1},
                  {.function = __func__, .part = name, .nonePriority = LOG_DEBUG}, id, isAnother, filename, size);
}
