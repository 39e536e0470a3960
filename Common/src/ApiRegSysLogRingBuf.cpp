// SPDX-License-Identifier: MIT
#include "ApiRegSysLogRingBuf.h"

#include "AaConfigRad.h"
#include "AaFile.h"
#include "AaMem.h"
#include "AaTrbl.h"
#include "rad/ERadHwapi.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace {

constexpr EAaSysLogSeverityLevel failure = EAaSysLogSeverityLevel_Warning;
constexpr std::string_view directory = "/ram/";
constexpr std::uint32_t trblPriority = 1;
constexpr std::uint32_t trblFlags = 0;

const char* nullOrOk(const void* pointer)
{
    return pointer ? "OK" : "NULL";
}

/// "/ram/" and the name, as far as there is room for it.
using FilePath = std::array<char, directory.size() + HWAPI_RING_BUFFER_NAME_MAX + 1>;
static_assert(std::tuple_size_v<FilePath> == 46);

FilePath pathOf(const char* fileName)
{
    FilePath path{};
    std::snprintf(path.data(), path.size(), "%s%s", directory.data(), fileName);
    return path;
}

bool registerBuffer(std::uint32_t featureId, std::uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                    TAaSysLogErrorPrintCallback errorPrintCb)
{
    constexpr std::int32_t exists = 1;
    const std::int32_t result = AaSysLogRegisterRingBuffer(featureId, bufferSize, severityLevel, errorPrintCb);
    if (result == exists) {
        AaSysLogPrintE(
            failure, featureId,
            "hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed, %d buffer already registered",
            static_cast<std::int32_t>(featureId));
    } else if (result != 0) {
        AaSysLogPrintE(
            failure, featureId,
            "hwApiRegisterSysLogRingBuffer() AaSysLogRegisterRingBuffer failed to register %d buffer, ret=%d",
            static_cast<std::int32_t>(featureId), result);
    }
    return result == 0;
}

/// A cell with the feature's id, which is never released; null when there is no memory.
std::uint32_t* makeContext(std::uint32_t featureId)
{
    auto* const context = static_cast<std::uint32_t*>(AaMemMallocDbg(sizeof featureId, __FILE__, __LINE__));
    if (context) {
        *context = featureId;
    } else {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, featureId,
                       "hwApiRegisterSysLogRingBuffer() failed to malloc memory");
    }
    return context;
}

bool registerFile(std::uint32_t featureId, const FilePath& path)
{
    std::uint32_t* const context = makeContext(featureId);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, featureId,
                   "hwApiRegisterSysLogRingBuffer() call AaTrblFileRegister(%s)", path.data());
    const std::int32_t result =
        AaTrblFileRegister(path.data() + directory.size(), path.data(), trblPriority, trblFlags,
                           hwApiAaPrepareFileDefaultCb, hwApiAaStoreFileDefaultCb, hwApiAaDeleteFileDefaultCb, context);
    if (result != 0) {
        AaSysLogPrintE(failure, featureId,
                       "hwApiRegisterSysLogRingBuffer() AaTrblFileRegister failed to register buffer, ret=%d", result);
    }
    return result == 0;
}

} // namespace

TBoolean HwApiRegisterSysLogRingBuffer(uint32_t featureId, uint32_t bufferSize, EAaSysLogSeverityLevel severityLevel,
                                       int (*errorPrintCb)(void), const char* fileName)
{
    if (!fileName) {
        AaSysLogPrintE(failure, featureId, "hwApiRegisterSysLogRingBuffer() failed, NULL pointers, fileName: %s",
                       nullOrOk(fileName));
        return 0;
    }
    if (AaConfigRadGetValue(featureId) != 0) {
        return 1;
    }
    return registerBuffer(featureId, bufferSize, severityLevel, errorPrintCb) &&
                   registerFile(featureId, pathOf(fileName))
               ? 1
               : 0;
}

TBoolean hwApiRegisterSysLogRingBuffer(const uint32_t* featureIdPointer, uint32_t bufferSize,
                                       EAaSysLogSeverityLevel severityLevel, int (*errorPrintCb)(void),
                                       const char* fileName)
{
    if (!featureIdPointer || !fileName) {
        AaSysLogPrintE(failure, ERadHwapi_PrintInit,
                       "hwApiRegisterSysLogRingBuffer() failed, NULL pointers, featureId: %s, fileName: %s",
                       nullOrOk(featureIdPointer), nullOrOk(fileName));
        return 0;
    }
    return HwApiRegisterSysLogRingBuffer(*featureIdPointer, bufferSize, severityLevel, errorPrintCb, fileName);
}

int32_t hwApiAaPrepareFileDefaultCb(const char* /*fileName*/, void* /*opaque*/)
{
    return HWAPI_RING_BUFFER_FILE_OK;
}

int32_t hwApiAaStoreFileDefaultCb(const char* fileName, void* opaque)
{
    if (!fileName || !opaque) {
        AaSysLogPrintE(failure, ERadHwapi_PrintInit,
                       "hwApiAaStoreFileDefaultCb failed, NULL pointers, fileName: %s, opaque: %s", nullOrOk(fileName),
                       nullOrOk(opaque));
        return HWAPI_RING_BUFFER_FILE_NULL;
    }
    const std::int32_t result = AaSysLogDumpRingBufferToFile(*static_cast<const std::uint32_t*>(opaque), fileName);
    if (result != 0) {
        AaSysLogPrintE(failure, ERadHwapi_PrintInit,
                       "hwApiAaStoreFileDefaultCb AaSysLogDumpRingBufferToFile failed, return value %d", result);
        return HWAPI_RING_BUFFER_FILE_FAILED;
    }
    return HWAPI_RING_BUFFER_FILE_OK;
}

int32_t hwApiAaDeleteFileDefaultCb(const char* fileName, void* opaque)
{
    if (!fileName || !opaque) {
        AaSysLogPrintE(failure, ERadHwapi_PrintInit,
                       "hwApiAaDeleteFileDefaultCb failed, NULL pointers, fileName: %s, opaque: %s", nullOrOk(fileName),
                       nullOrOk(opaque));
        return HWAPI_RING_BUFFER_FILE_NULL;
    }
    if (AaFileRemove(fileName) != 0) {
        AaSysLogPrintE(failure, ERadHwapi_PrintInit, "hwApiAaDeleteFileDefaultCb AaFileRemove failed fileName=%s",
                       fileName);
        return HWAPI_RING_BUFFER_FILE_FAILED;
    }
    return HWAPI_RING_BUFFER_FILE_OK;
}
