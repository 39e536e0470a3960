// SPDX-License-Identifier: MIT
#include "rioDio.h"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "rioDio/Transfer.hpp"

#include <algorithm>

namespace {

using namespace vel::hwapi::swdl;

struct Destination {
    std::uint16_t device;
    std::uint64_t address;
};

/// A file on its way to a device.
struct Source {
    const char* name;
    AaFile* file;
    ssize_t size; ///< of the file
    void* buffer;
    ssize_t bufferSize;
};

/// Copies the file block by block. @param written receives the bytes that the device has got
ERioWrite copyBlocks(const Source& source, const Destination& to, std::int32_t handle, ssize_t& written)
{
    ERioWrite result = ERioWrite_Failed;
    while (written < source.size) {
        const std::int32_t count =
            AaFileRead(source.file, source.buffer, static_cast<std::uint32_t>(source.bufferSize));
        if (count <= 0) {
            return ERioWrite_Failed;
        }
        const std::uint64_t address = to.address + static_cast<std::uint64_t>(written);
        if (ddal_rio_copy_to_fd(handle, address, source.buffer, static_cast<std::uint32_t>(count)) != DDAL_OK) {
            return ERioWrite_Failed;
        }
        AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL,
                       "Writing file '%s' to SRIO device 0x%X, address 0x%llx, size %zd", source.name,
                       unsigned{to.device}, static_cast<unsigned long long>(address), ssize_t{count});
        result = ERioWrite_Done;
        written += count;
    }
    return result;
}

ERioWrite write(const Source& source, const Destination& to)
{
    ERioWrite result = ERioWrite_Failed;
    ssize_t written = 0;
    std::int32_t handle = -1; // closed even if it could not be opened: the driver knows best
    if (openHandle(to.device, handle)) {
        result = copyBlocks(source, to, handle, written);
    } else {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL,
                       "Failed to open handle for rio transfer (write)");
    }
    if (ddal_rio_copy_close_fd(handle) != DDAL_OK) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "Failed to close transfer handle");
    }
    if (written == source.size) {
        return result;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL,
                   "Writing file '%s' to SRIO device 0x%X failed! current 0x%zx, total 0x%zx", source.name,
                   unsigned{to.device}, static_cast<std::size_t>(written), static_cast<std::size_t>(source.size));
    return ERioWrite_Failed;
}

} // namespace

int32_t writeBinaryFileToSrio(uint16_t device, uint64_t address, const char* filename)
{
    const char* const name = filename ? filename : "(null)";
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL, "writeBinaryFileToSrio()");
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL, "Opening file '%s'", name);
    const OwnedFile file(AaFileOpen(filename, "r"));
    if (!file) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "File '%s' open failed", name);
        return ERioWrite_Failed;
    }
    const ssize_t size = AaFileGetSize(file.get());
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL, "File '%s' open successful, size %zd bytes", name,
                   size);
    const ssize_t chunk = std::clamp<ssize_t>(size, 0, blockSize);
    const OwnedMemory buffer = allocate(chunk);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_SWDL, "Allocated data %p", buffer.get());
    if (!buffer) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, ERadHwapi_SWDL, "Failed to allocate memory %zd", chunk);
        return ERioWrite_Failed;
    }
    return write({name, file.get(), size, buffer.get(), chunk}, {device, address});
}
