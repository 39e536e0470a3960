// SPDX-License-Identifier: MIT
#include "rioDio.h"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "rioDio/Transfer.hpp"

#include <cstdio>

namespace {

using namespace vel::hwapi::swdl;

constexpr const char* function = "DumpDataToFile";
constexpr const char* dumpDirectory = "/ram/dsp_parameters";

/// Data that are to be dumped.
struct Dump {
    const void* data;
    std::uint32_t size;
    unsigned srioId;
    const char* prefix;
    const char* fileName;
};

/// Makes the file's name. @return false when there can be none.
bool nameFile(const Dump& dump, char* name)
{
    return dump.prefix &&
           std::snprintf(name, RIO_DUMP_FILE_NAME_SIZE, "%s/%s_0x%X", dumpDirectory, dump.prefix, dump.srioId) > 0;
}

bool provideDirectory(const Dump& dump)
{
    if (AaFileDirExists(dumpDirectory)) {
        return true;
    }
    const std::int32_t result = AaFileCreateDir(dumpDirectory);
    if (result != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_SWDL,
                       "%s: [0x%X] Could not create %s directory. Error %d", function, dump.srioId, dumpDirectory,
                       result);
    }
    return result == 0;
}

bool writeFile(const Dump& dump)
{
    const OwnedFile file(AaFileOpen(dump.fileName, "w"));
    if (!file) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_SWDL, "%s: [0x%X] Could not open %s for writing",
                       function, dump.srioId, dump.fileName);
        return false;
    }
    const std::int32_t written = AaFileWrite(file.get(), dump.data, dump.size);
    if (written < 0 || static_cast<std::uint32_t>(written) != dump.size) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_SWDL, "%s: [0x%X] Failed to write data to %s", function,
                       dump.srioId, dump.fileName);
        return false;
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Info, ERadHwapi_SWDL, "%s: [0x%X] %s data dumped to %s", function,
                   dump.srioId, dump.prefix, dump.fileName);
    return true;
}

} // namespace

int32_t DumpDataToFile(const void* params, uint32_t size, uint16_t srioId, const char* filenameprefix,
                       char* outfilename)
{
    const Dump dump{params, size, srioId, filenameprefix, outfilename};
    if (!outfilename) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_SWDL, "%s: [0x%X] Invalid pointer to filename", function,
                       dump.srioId);
        return 0;
    }
    if (!nameFile(dump, outfilename)) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_SWDL, "%s: [0x%X] File name cannot be constructed",
                       function, dump.srioId);
        return 0;
    }
    return provideDirectory(dump) && writeFile(dump) ? 1 : 0;
}
