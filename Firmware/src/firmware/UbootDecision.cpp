// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "binary/Unsigned32.hpp"
#include "ddal_boot.h"
#include "firmware/DriverFailure.hpp"
#include "firmware/FirmwareCatalogue.hpp"
#include "firmware/ImageSearch.hpp"

#include <array>
#include <cstddef>
#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

constexpr const char* function = "is_uboot_update_needed";
constexpr std::array<const char*, 3> locationNames{"primary", "backup", "uImage"};
static_assert(locationNames.size() == DDAL_BOOT_UIMAGE + 1);

const char* locationName(std::int32_t location)
{
    const bool isKnown = location >= 0 && static_cast<std::size_t>(location) < locationNames.size();
    return isKnown ? locationNames[static_cast<std::size_t>(location)] : "unknown";
}

/// Compares the image with the boot loader in use.
std::int32_t compare(const FoundImage& image)
{
    std::array<char, DDAL_BOOT_VERSION_SIZE> text{};
    const std::int32_t result = ddal_boot_get_uboot_version(text.data());
    if (result != DDAL_OK) {
        logDriverFailure(function, "ddal_boot_get_uboot_version", result);
        return FIRMWARE_ACTIVE_VERSION_NOT_READ;
    }
    syslog(LOG_INFO, "%s(): active uboot version '%s'", function, text.data());
    if (image.version < toUnsigned32(text.data(), 10)) {
        syslog(LOG_INFO, "%s(): uboot binary version is older than active, do not update wrong one!", function);
        syslog(LOG_INFO, "%s(): no", function);
        return 0;
    }
    syslog(LOG_INFO, "%s(): yes", function);
    return 1;
}

std::int32_t decide(char* filename, std::uint32_t size, std::int32_t force)
{
    syslog(LOG_INFO, "%s(): ?", function);
    std::int32_t location = -1;
    const std::int32_t result = ddal_boot_get_uboot_id(&location);
    if (result != DDAL_OK) {
        logDriverFailure(function, "ddal_boot_get_uboot_id", result);
        return FIRMWARE_NOT_SUPPORTED;
    }
    syslog(LOG_INFO, "%s(): uboot is started from '%s' (%d)", function, locationName(location), location);
    if (location != DDAL_BOOT_UIMAGE && force != 1) {
        syslog(LOG_INFO, "%s(): no", function);
        return 0;
    }
    FoundImage image;
    const std::int32_t found =
        findTheImage({.board = nullptr, .chip = bootLoaderChipIdentifier, .hwSwId = 0, .minor = 1},
                     {.function = function, .part = "uboot", .nonePriority = LOG_INFO}, image);
    if (found != 1) {
        return found;
    }
    const std::int32_t decision = compare(image);
    if (decision >= 0) {
        copyText(image.name.data(), filename, size);
    }
    return decision;
}

} // namespace

std::int32_t is_uboot_booted_from_ram()
{
    std::int32_t location = -1;
    const std::int32_t result = ddal_boot_get_uboot_id(&location);
    if (result != DDAL_OK) {
        syslog(LOG_INFO, "%s(): uboot start location read failed (%d)", __func__, result);
        return -1;
    }
    if (location == DDAL_BOOT_UIMAGE) {
        syslog(LOG_INFO, "%s(): uboot is started from RAM (%d)", __func__, location);
        return 1;
    }
    syslog(LOG_INFO, "%s(): uboot is NOT started from RAM, uboot update is not needed (%d)", __func__, location);
    return 0;
}

std::int32_t is_uboot_update_needed(char* filename, std::uint32_t size, std::int32_t force)
{
    const std::int32_t decision = decide(filename, size, force);
    if (decision < 0) {
        copyText("", filename, size);
    }
    return decision;
}
