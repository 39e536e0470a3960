// SPDX-License-Identifier: MIT
#include "firmware/ImageSearch.hpp"

#include <cstdio>
#include <syslog.h>

namespace vel::hwapi::firmware {

void copyText(const char* text, char* buffer, std::uint32_t size)
{
    if (buffer && size != 0) {
        std::snprintf(buffer, size, "%s", text);
    }
}

std::int32_t findTheImage(const ImageSearch& search, const ImageWords& words, FoundImage& image)
{
    const std::int32_t count =
        find_binary_compatible(imageDirectory, search.board, search.chip, search.hwSwId, search.minor,
                               image.name.data(), static_cast<std::uint32_t>(image.name.size()), &image.version);
    if (count < 0) {
        return count;
    }
    if (count == 0) {
        syslog(words.nonePriority, "%s(): no %s binary", words.function, words.part);
        return FIRMWARE_NO_IMAGE;
    }
    if (count > 1) {
        return FIRMWARE_SEVERAL_IMAGES;
    }
    syslog(LOG_INFO, "%s(): %s file '%s' version 0x%X (%d)", words.function, words.part, image.name.data(),
           image.version, static_cast<std::int32_t>(image.version));
    return 1;
}

} // namespace vel::hwapi::firmware
