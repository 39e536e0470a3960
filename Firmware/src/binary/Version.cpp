// SPDX-License-Identifier: MIT
#include "binary.h"

#include "binary/ImageTrailer.hpp"
#include "binary/Unsigned32.hpp"

#include <syslog.h>

using vel::hwapi::firmware::ImageTrailer;
using vel::hwapi::firmware::readTrailerFields;
using vel::hwapi::firmware::TrailerFields;

namespace {

void logFields(const TrailerFields& fields, const char* function)
{
    syslog(LOG_INFO, "%s(): Version:    %d", function, static_cast<std::int32_t>(fields.version));
    syslog(LOG_INFO, "%s(): TargetUnit: %s", function, fields.targetUnit);
    syslog(LOG_INFO, "%s(): SwId:       %s", function, fields.swId);
    syslog(LOG_INFO, "%s(): SwVersion:  %s", function, fields.swVersion);
    syslog(LOG_INFO, "%s(): BuildTime:  %s", function, fields.buildTime);
    syslog(LOG_INFO, "%s(): Crc32:      %d (0x%x)", function, static_cast<std::int32_t>(fields.crc32), fields.crc32);
    syslog(LOG_INFO, "%s(): Length:     %d (0x%x)", function, static_cast<std::int32_t>(fields.length), fields.length);
}

} // namespace

std::int32_t binary_version(const char* filename, std::uint32_t hwswid, std::int32_t minor, std::uint32_t* version)
{
    *version = 0;
    syslog(LOG_INFO, "%s(): Reading file '%s' trailer", __func__, filename);
    ImageTrailer trailer;
    if (const std::uint32_t result = trailer.read(filename); result != BINARY_OK) {
        syslog(LOG_INFO, "%s(): Trailer read failed %d (0x%x)", __func__, static_cast<std::int32_t>(result), result);
        return BINARY_VERSION_TRAILER_NOT_READ;
    }
    if (!trailer.parse()) {
        syslog(LOG_INFO, "%s(): XML parsing failed %d", __func__, trailer.parserResult());
        return BINARY_VERSION_XML_INVALID;
    }
    const AaGpuXmlNode* const node = trailer.node();
    if (!node) {
        syslog(LOG_INFO, "%s(): Invalid trailer XML", __func__);
        return BINARY_VERSION_NO_TRAILER;
    }
    const TrailerFields fields = readTrailerFields(*node);
    logFields(fields, __func__);
    if (scan_hwswid(node, hwswid, minor) != BINARY_OK) {
        syslog(LOG_INFO, "%s(): Binary is not compatible with this board!", __func__);
        return BINARY_VERSION_NOT_COMPATIBLE;
    }
    *version = vel::hwapi::firmware::softwareVersionOf(fields.swVersion);
    return BINARY_VERSION_OK;
}
