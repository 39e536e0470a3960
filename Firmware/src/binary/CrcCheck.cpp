// SPDX-License-Identifier: MIT
#include "binary.h"

#include "binary/ImageTrailer.hpp"

#include <syslog.h>

using vel::hwapi::firmware::ImageTrailer;

std::int32_t binary_crc(const char* filename)
{
    ImageTrailer trailer;
    if (const std::uint32_t result = trailer.read(filename); result != BINARY_OK) {
        syslog(LOG_INFO, "%s(): File '%s' trailer read failed %d (0x%x)", __func__, filename,
               static_cast<std::int32_t>(result), result);
        return static_cast<std::int32_t>(result);
    }
    if (!trailer.parse()) {
        syslog(LOG_INFO, "%s(): XML parsing failed %d", __func__, trailer.parserResult());
        return BINARY_TRAILER_XML_INVALID;
    }
    const AaGpuXmlNode* const node = trailer.node();
    if (!node) {
        syslog(LOG_INFO, "%s(): Invalid trailer XML", __func__);
        return BINARY_TRAILER_XML_INVALID;
    }
    const std::uint32_t assumed = getU32ValueFromNode(node, "Crc32");
    std::uint32_t crc = 0;
    if (calculate_crc(filename, trailer.beginning(), &crc) != BINARY_OK || crc != assumed) {
        syslog(LOG_INFO, "%s(): CRC check failed: %s. Calculated CRC32: %d, Assumed: %d", __func__, filename,
               static_cast<std::int32_t>(crc), static_cast<std::int32_t>(assumed));
        return BINARY_CRC_MISMATCH;
    }
    return BINARY_OK;
}
