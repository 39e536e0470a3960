// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "firmware/FirmwareCatalogue.hpp"
#include "firmware/ImageSearch.hpp"

#include <syslog.h>

using namespace vel::hwapi::firmware;

namespace {

/// Looks for an image for this board, and says under the name of a finder what came of it.
std::int32_t find(const char* finder, const char* chip, std::int32_t minor, char* fileName, std::uint32_t size)
{
    copyText("", fileName, size);
    FoundImage image;
    const std::int32_t count = find_binary_compatible(imageDirectory, nullptr, chip, 0, minor, image.name.data(),
                                                      static_cast<std::uint32_t>(image.name.size()), &image.version);
    copyText(image.name.data(), fileName, size);
    syslog(LOG_INFO, "%s(): %s ret: %d, fileName: %s", finder, finder, count, fileName && size != 0 ? fileName : "");
    return count;
}

} // namespace

std::int32_t FindNaxFpgaBinaryFile(char* fileName, std::uint32_t sizeOfFileName)
{
    const char* name = nullptr;
    const char* chip = nullptr;
    std::uint32_t id = 0;
    if (get_fpga(&name, &chip, &id) != 0) {
        copyText("", fileName, sizeOfFileName);
        syslog(LOG_INFO, "%s(): no fpga specified for unit '%s'", __func__, unit_version());
        return FIRMWARE_NOT_SUPPORTED;
    }
    return find(__func__, chip, 1, fileName, sizeOfFileName);
}

std::int32_t FindKivFpgaBinaryFile(char* fileName, std::uint32_t sizeOfFileName)
{
    return find(__func__, bmuChipIdentifier, 0, fileName, sizeOfFileName);
}

std::int32_t FindUBootBinaryFile(char* fileName, std::uint32_t sizeOfFileName)
{
    return find(__func__, bootLoaderChipIdentifier, 1, fileName, sizeOfFileName);
}
