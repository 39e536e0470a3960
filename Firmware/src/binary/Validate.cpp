// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaSysLog.h"
#include "binary/ImageTrailer.hpp"

using vel::hwapi::firmware::ImageTrailer;
using vel::hwapi::firmware::readTrailerFields;
using vel::hwapi::firmware::TrailerFields;

namespace {

constexpr std::uint32_t feature = 0x20003; // software download

void logFields(const TrailerFields& fields)
{
    constexpr EAaSysLogSeverityLevel info = EAaSysLogSeverityLevel_Info;
    AaSysLogPrintE(info, feature, "TrailerVersion: %d", static_cast<std::int32_t>(fields.version));
    AaSysLogPrintE(info, feature, "TargetUnit: %s", fields.targetUnit);
    AaSysLogPrintE(info, feature, "SwId: %s", fields.swId);
    AaSysLogPrintE(info, feature, "SwVersion: %s", fields.swVersion);
    AaSysLogPrintE(info, feature, "BuildTime: %s", fields.buildTime);
    AaSysLogPrintE(info, feature, "CRC32: %d (0x%x)", static_cast<std::int32_t>(fields.crc32), fields.crc32);
    AaSysLogPrintE(info, feature, "File Length: %d (0x%x)", static_cast<std::int32_t>(fields.length), fields.length);
}

} // namespace

std::int32_t binary_validate(const char* fileName, std::uint32_t hwswid)
{
    constexpr EAaSysLogSeverityLevel error = EAaSysLogSeverityLevel_Error;
    ImageTrailer trailer;
    if (const std::uint32_t result = trailer.read(fileName); result != BINARY_OK) {
        AaSysLogPrintE(error, feature, "Reading the file trailer failed, errorCode: %d (0x%x)",
                       static_cast<std::int32_t>(result), result);
        return static_cast<std::int32_t>(result);
    }
    if (!trailer.parse()) {
        AaSysLogPrintE(error, feature, "Trailer data parsing failed (code: %d)", trailer.parserResult());
        return BINARY_TRAILER_XML_INVALID;
    }
    const AaGpuXmlNode* const node = trailer.node();
    if (!node) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, feature, "SW_DL_ERROR!!! could not find node");
        return BINARY_TRAILER_XML_INVALID;
    }
    const TrailerFields fields = readTrailerFields(*node);
    logFields(fields);

    std::uint32_t crc = 0;
    if (calculate_crc(fileName, trailer.beginning(), &crc) != BINARY_OK || crc != fields.crc32) {
        AaSysLogPrintE(error, feature, "CRC check failed: %s. Calculated CRC32: %d, Assumed: %d", fileName,
                       static_cast<std::int32_t>(crc), static_cast<std::int32_t>(fields.crc32));
        return BINARY_CRC_MISMATCH;
    }
    if (scan_hwswid(node, hwswid, 1) != BINARY_OK) {
        AaSysLogPrintE(error, feature, "Own HwSwId not found from trailer, binary is not compatible with this board!");
        return BINARY_HWSWID_NOT_FOUND;
    }
    return BINARY_OK;
}
